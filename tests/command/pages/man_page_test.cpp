#include <gtest/gtest.h>

#include "command/pages/pages.h"
#include "tests/command/pages/example_manual.h"

namespace kestrel::tests {
namespace {

using command::ManPage;

TEST(ManPageTest, ProgramWithSubcommandsHasEverySection) {
  EXPECT_EQ(ManPage(ExampleManual(), "1.2.3"),
            R"(.TH TOOL\-ZAP 1 "" "kestrelcore 1.2.3" "User Commands"
.SH NAME
tool\-zap \- A tool's summary
.SH SYNOPSIS
\fBtool\-zap\fP [\fIOPTIONS\fP] \fISUBCOMMAND\fP ...
.SH DESCRIPTION
Ends with a \e and an a\-b.
.PP
\&.second
.PP
\&'third'
.PP
X.
.SH OPTIONS
.TP
\fB\-h\fP, \fB\-\-help\fP
Print help.
.TP
\fB\-\-version\fP
Print the version.
.SH SUBCOMMANDS
.SS tool\-zap open [OPTIONS] [FILE]
Opens.
.TP
\fIFILE\fP
The box.
.TP
\fB\-l\fP, \fB\-\-level\fP \fILEVEL\fP
[X]: it's its level. One of \fBlow\fP, \fBhigh\fP. By default \fBlow\fP.
.TP
\fB\-h\fP, \fB\-\-help\fP
Print help.
.SS tool\-zap wait [OPTIONS] [PID...]
Waits.
.TP
\fIPID\fP
The processes.
.TP
\fB\-p\fP, \fB\-\-parent\fP \fIPID\fP
Its parent.
.SS tool\-zap grow [OPTIONS] SIZE
Grows.
.TP
\fISIZE\fP
The size.
.TP
\fB\-\-time\fP \fITIME\fP
How long.
.SH EXIT STATUS
.TP
\fB0\fP
Success.
.TP
\fB64\fP
\&'Wrong' usage.
.SH EXAMPLES
.TP
\fBtool\-zap open a.box\fP
Open it.
.TP
\fBtool\-zap wait 1\fP
Wait for it.
.TP
\fBtool\-zap grow 1G\fP
Grow it.
.SH SEE ALSO
\fBother\fP(1)
\fBthird\fP(5)
)");
}

TEST(ManPageTest, ProgramWithoutSubcommandsHasNeitherTheirSectionNorExamples) {
  EXPECT_EQ(ManPage(PlainManual(), "1.2.3"), R"(.TH PLAIN 1 "" "kestrelcore 1.2.3" "User Commands"
.SH NAME
plain \- Plain
.SH SYNOPSIS
\fBplain\fP [\fIOPTIONS\fP]
.SH DESCRIPTION
Plain.
.SH OPTIONS
.TP
\fB\-p\fP, \fB\-\-pid\fP \fIPID\fP
Process. By default \fB\-1\fP.
.TP
\fB\-\-test\fP
Test.
.SH EXIT STATUS
.TP
\fB0\fP
Success.
.SH SEE ALSO
\fBother\fP(1)
)");
}

}  // namespace
}  // namespace kestrel::tests

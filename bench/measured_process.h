#pragma once

namespace kestrel::bench {

// Whom the process meters measure: kestrelcore checks more of another process than of its own.
int OwnProcess();
int OtherProcess();  // a child that sleeps as long as this process exists

}  // namespace kestrel::bench

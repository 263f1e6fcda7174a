#include "simulator/machine_file.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "tests/simulator/complaint_about_file.h"

namespace kestrel::tests {

namespace {

using simulator::Machine;
using simulator::MachineFileError;
using simulator::ParseMachine;

// Returns the message about a text; empty if it is accepted.
std::string ComplaintAbout(const std::string& text) {
  try {
    static_cast<void>(ParseMachine(text, "m.toml"));
    return "";
  } catch (const MachineFileError& error) {
    return error.what();
  }
}

const std::string kDevice =
    "[[device]]\n"
    "name = 'a card'\n"
    "arch = 'gfx1100'\n"
    "integrated = false\n"
    "total_memory = 1_000\n"
    "free_memory = 900\n";

// The device above with one of its lines 2 to 6 replaced.
std::string DeviceWithLine(int number, const std::string& line) {
  std::string text = kDevice;
  std::size_t begin = 0;
  for (int i = 1; i < number; ++i) {
    begin = text.find('\n', begin) + 1;
  }
  return text.replace(begin, text.find('\n', begin) - begin, line);
}

std::string Fault(const std::string& keys) { return kDevice + "[[fault]]\n" + keys; }

TEST(MachineFileTest, DeviceTablesBecomeDevices) {
  const Machine machine =
      ParseMachine(kDevice +
                       "[[device]]\nname = 'an APU'\narch = 'gfx1103'\nintegrated = true\n"
                       "total_memory = 20\nfree_memory = 30\nproperties_memory = 40\n",
                   "m.toml");
  ASSERT_EQ(machine.devices.size(), 2U);
  EXPECT_EQ(machine.devices[0].name, "a card");
  EXPECT_EQ(machine.devices[0].arch, "gfx1100");
  EXPECT_EQ(machine.devices[0].integrated, 0);
  EXPECT_EQ(machine.devices[0].total_memory, 1000U);
  EXPECT_EQ(machine.devices[0].free_memory, 900U);
  EXPECT_EQ(machine.devices[0].properties_memory, 1000U) << "the total by default";
  EXPECT_EQ(machine.devices[1].integrated, 1);
  EXPECT_EQ(machine.devices[1].total_memory, 20U);
  EXPECT_EQ(machine.devices[1].free_memory, 30U);
  EXPECT_EQ(machine.devices[1].properties_memory, 40U);
  EXPECT_FALSE(machine.claimed_device_count.has_value());
  EXPECT_TRUE(machine.faults.empty());
}

TEST(MachineFileTest, CountRepeatsTheDevice) {
  const Machine machine = ParseMachine(kDevice + "count = 8\n" + kDevice, "m.toml");
  ASSERT_EQ(machine.devices.size(), 9U);
  EXPECT_EQ(machine.devices[7].name, "a card");
}

TEST(MachineFileTest, EmptyDeviceListIsAMachineWithoutDevices) {
  EXPECT_TRUE(ParseMachine("device = []\n", "m.toml").devices.empty());
  const Machine machine = ParseMachine("device = []\nclaimed_device_count = 0\n", "m.toml");
  EXPECT_EQ(machine.claimed_device_count, 0);
}

TEST(MachineFileTest, FaultTablesBecomeFaults) {
  const Machine machine =
      ParseMachine(Fault("operation = 'hipMemGetInfo'\ndevice = 0\ncall = 2\n"
                         "status = 'hipErrorNotReady'\n"
                         "[[fault]]\noperation = 'hipInit'\nstatus = 'hipErrorUnknown'\n"),
                   "m.toml");
  ASSERT_EQ(machine.faults.size(), 2U);
  EXPECT_EQ(machine.faults[0].operation, "hipMemGetInfo");
  EXPECT_EQ(machine.faults[0].device, 0);
  EXPECT_EQ(machine.faults[0].call, 2);
  EXPECT_EQ(machine.faults[0].status, hipErrorNotReady);
  EXPECT_EQ(machine.faults[1].operation, "hipInit");
  EXPECT_FALSE(machine.faults[1].device.has_value());
  EXPECT_FALSE(machine.faults[1].call.has_value());
  EXPECT_EQ(machine.faults[1].status, hipErrorUnknown);
}

TEST(MachineFileTest, TextThatIsNotTomlIsRefusedWithItsLine) {
  const std::string complaint = ComplaintAbout("[[device]]\nname = 'a card\narch = 'gfx'\n");
  EXPECT_EQ(complaint.rfind("m.toml:2:", 0), 0U) << complaint;
}

TEST(MachineFileTest, UnknownKeyIsRefused) {
  EXPECT_EQ(ComplaintAbout(kDevice + "memory = 5\n"), "m.toml:7:1: unknown key 'memory'");
  EXPECT_EQ(ComplaintAbout("  devices = []\n"), "m.toml:1:3: unknown key 'devices'");
  EXPECT_EQ(ComplaintAbout(Fault("operations = 'hipInit'\n")),
            "m.toml:8:1: unknown key 'operations'");
}

TEST(MachineFileTest, MissingKeyIsRefused) {
  EXPECT_EQ(ComplaintAbout(""), "m.toml:1:1: key 'device' is missing");
  EXPECT_EQ(ComplaintAbout(DeviceWithLine(2, "")), "m.toml:1:1: key 'name' is missing");
  EXPECT_EQ(ComplaintAbout(DeviceWithLine(3, "")), "m.toml:1:1: key 'arch' is missing");
  EXPECT_EQ(ComplaintAbout(DeviceWithLine(4, "")), "m.toml:1:1: key 'integrated' is missing");
  EXPECT_EQ(ComplaintAbout(DeviceWithLine(5, "")), "m.toml:1:1: key 'total_memory' is missing");
  EXPECT_EQ(ComplaintAbout(DeviceWithLine(6, "")), "m.toml:1:1: key 'free_memory' is missing");
  EXPECT_EQ(ComplaintAbout(Fault("status = 'hipErrorUnknown'\n")),
            "m.toml:7:1: key 'operation' is missing");
  EXPECT_EQ(ComplaintAbout(Fault("operation = 'hipInit'\n")),
            "m.toml:7:1: key 'status' is missing");
}

TEST(MachineFileTest, ValueOfAnotherTypeIsRefused) {
  EXPECT_EQ(ComplaintAbout(DeviceWithLine(2, "name = 7")), "m.toml:2:8: 'name' must be a string");
  EXPECT_EQ(ComplaintAbout(DeviceWithLine(4, "integrated = 1")),
            "m.toml:4:14: 'integrated' must be true or false");
  EXPECT_EQ(ComplaintAbout(DeviceWithLine(5, "total_memory = '24 GiB'")),
            "m.toml:5:16: 'total_memory' must be an integer");
  EXPECT_EQ(ComplaintAbout(DeviceWithLine(6, "free_memory = 1e3")),
            "m.toml:6:15: 'free_memory' must be an integer");
  EXPECT_EQ(ComplaintAbout("device = 3\n"),
            "m.toml:1:10: 'device' must be a list of tables: [[device]]");
  EXPECT_EQ(ComplaintAbout("[device]\n"),
            "m.toml:1:1: 'device' must be a list of tables: [[device]]");
  EXPECT_EQ(ComplaintAbout("device = [1]\n"), "m.toml:1:11: each 'device' must be a table");
}

TEST(MachineFileTest, NumberOutOfRangeIsRefused) {
  EXPECT_EQ(ComplaintAbout(DeviceWithLine(5, "total_memory = -1")),
            "m.toml:5:16: 'total_memory' must be from 0 to 9223372036854775807");
  EXPECT_EQ(ComplaintAbout(kDevice + "count = 0\n"), "m.toml:7:9: 'count' must be from 1 to 1024");
  EXPECT_EQ(ComplaintAbout("device = []\nclaimed_device_count = 2147483648\n"),
            "m.toml:2:24: 'claimed_device_count' must be from -2147483648 to 2147483647");
  EXPECT_EQ(ComplaintAbout(Fault("operation = 'hipInit'\nstatus = 'hipErrorUnknown'\ncall = 0\n")),
            "m.toml:10:8: 'call' must be from 1 to 2147483647");
  const std::string fault = "operation = 'hipInit'\nstatus = 'hipErrorUnknown'\n";
  EXPECT_EQ(ComplaintAbout(Fault(fault + "call = 2147483648\n")),
            "m.toml:10:8: 'call' must be from 1 to 2147483647");
  EXPECT_EQ(ComplaintAbout(Fault(fault + "device = -1\n")),
            "m.toml:10:10: 'device' must be from 0 to 2147483647");
  EXPECT_EQ(ComplaintAbout(Fault(fault + "device = 2147483648\n")),
            "m.toml:10:10: 'device' must be from 0 to 2147483647");
  EXPECT_EQ(ComplaintAbout(kDevice + "count = 1025\n"),
            "m.toml:7:9: 'count' must be from 1 to 1024");
  EXPECT_EQ(ComplaintAbout(kDevice + "properties_memory = -1\n"),
            "m.toml:7:21: 'properties_memory' must be from 0 to 9223372036854775807");
  EXPECT_EQ(ComplaintAbout("device = []\nclaimed_device_count = -2147483649\n"),
            "m.toml:2:24: 'claimed_device_count' must be from -2147483648 to 2147483647");
}

TEST(MachineFileTest, GreatestAndLeastNumbersAreRead) {
  const std::string greatest = "9223372036854775807";
  const std::string memory = "total_memory = " + greatest + "\nfree_memory = " + greatest +
                             "\nproperties_memory = " + greatest + "\ncount = 1024\n";
  const std::string names = "[[device]]\nname = 'n'\narch = 'a'\nintegrated = false\n";
  const std::string fault =
      "[[fault]]\noperation = 'hipSetDevice'\nstatus = 'hipErrorUnknown'\n"
      "device = 2147483646\ncall = 2147483647\n";
  const Machine machine =
      ParseMachine("claimed_device_count = 2147483647\n" + names + memory + fault, "m.toml");
  ASSERT_EQ(machine.devices.size(), 1024U);
  EXPECT_EQ(machine.devices[0].total_memory, 9223372036854775807U);
  EXPECT_EQ(machine.devices[0].free_memory, 9223372036854775807U);
  EXPECT_EQ(machine.devices[0].properties_memory, 9223372036854775807U);
  EXPECT_EQ(machine.claimed_device_count, 2147483647);
  ASSERT_EQ(machine.faults.size(), 1U);
  EXPECT_EQ(machine.faults[0].device, 2147483646);
  EXPECT_EQ(machine.faults[0].call, 2147483647);
  const Machine least =
      ParseMachine("claimed_device_count = -2147483648\n" + names +
                       "total_memory = 0\nfree_memory = 0\nproperties_memory = 0\ncount = 1\n",
                   "m.toml");
  EXPECT_EQ(least.claimed_device_count, -2147483648LL);
  EXPECT_EQ(least.devices.size(), 1U);
}

TEST(MachineFileTest, NumberBeyond64BitsIsRefused) {
  const std::string complaint =
      ComplaintAbout(DeviceWithLine(5, "total_memory = 9223372036854775808"));
  EXPECT_EQ(complaint.rfind("m.toml:5:", 0), 0U) << complaint;
}

TEST(MachineFileTest, TextLongerThanTheRecordFieldIsRefused) {
  EXPECT_EQ(ComplaintAbout(DeviceWithLine(2, "name = '" + std::string(256, 'n') + "'")), "");
  EXPECT_EQ(ComplaintAbout(DeviceWithLine(2, "name = '" + std::string(257, 'n') + "'")),
            "m.toml:2:8: 'name' must not exceed 256 bytes");
}

TEST(MachineFileTest, FaultOfUnknownOperationIsRefused) {
  const std::string status = "status = 'hipErrorUnknown'\n";
  EXPECT_EQ(ComplaintAbout(Fault(status + "operation = 'hipMemInfo'\n")),
            "m.toml:9:13: there is no operation 'hipMemInfo' that could fail");
  EXPECT_EQ(ComplaintAbout(Fault(status + "operation = 'hipGetErrorString'\n")),
            "m.toml:9:13: there is no operation 'hipGetErrorString' that could fail");
}

TEST(MachineFileTest, FaultWithoutAFailureStatusIsRefused) {
  const std::string operation = "operation = 'hipInit'\n";
  EXPECT_EQ(ComplaintAbout(Fault(operation + "status = 'hipErrorBroken'\n")),
            "m.toml:9:10: there is no failure 'hipErrorBroken'");
  EXPECT_EQ(ComplaintAbout(Fault(operation + "status = 'hipSuccess'\n")),
            "m.toml:9:10: there is no failure 'hipSuccess'");
  EXPECT_EQ(ComplaintAbout(Fault(operation + "status = 999\n")),
            "m.toml:9:10: 'status' must be a string");
}

TEST(MachineFileTest, FaultOfUncountedDeviceIsRefused) {
  const std::string fault = "operation = 'hipSetDevice'\nstatus = 'hipErrorUnknown'\ndevice = 1\n";
  EXPECT_EQ(ComplaintAbout(Fault(fault)), "m.toml:10:10: there is no device 1");
  EXPECT_EQ(ComplaintAbout("claimed_device_count = 2\n" + Fault(fault)), "");
  EXPECT_EQ(ComplaintAbout("device = []\n[[fault]]\noperation = 'hipSetDevice'\n"
                           "status = 'hipErrorUnknown'\ndevice = 0\n"),
            "m.toml:5:10: there is no device 0");
}

TEST(MachineFileTest, TextThatTheParserCannotTakeIsRefused) {
  EXPECT_EQ(ComplaintAbout("[[+x]]\n"), "m.toml:1:3: a table header must begin with a key");
  EXPECT_EQ(ComplaintAbout(kDevice + "\xc9\x96"),
            "m.toml:7:1: only a string or a comment may contain this character");
}

TEST(MachineFileTest, KeyOfManyPartsIsRefused) {
  std::string key = "a";
  for (int i = 0; i < 200'000; ++i) {
    key += ".a";
  }
  EXPECT_EQ(ComplaintAbout(key + " = 1\n"), "m.toml:1:34: too many dots in one line");
}

TEST(MachineFileTest, NulInKeyDoesNotEndTheComplaint) {
  EXPECT_EQ(ComplaintAbout(R"("a\u0000b" = 1)"), "m.toml:1:1: unknown key 'a\\x00b'");
}

TEST(MachineFileTest, ControlCharactersAreNotRepeated) {
  EXPECT_EQ(ComplaintAbout("\"a\\u001b[31m\\u007f\\u009b\\u00e9\" = 1\n"),
            "m.toml:1:1: unknown key 'a\\x1b[31m\\x7f\\x9b\u00e9'");
}

TEST(MachineFileTest, ControlCharactersAreFoundAtEitherEndOfTheMessage) {
  EXPECT_STREQ(MachineFileError("\xc2\x9b").what(), "\\x9b");
  EXPECT_STREQ(MachineFileError("\xc2\x80 \xc2\x9f").what(), "\\x80 \\x9f");
  EXPECT_STREQ(MachineFileError("\xc2\xa0").what(), "\xc2\xa0");
  EXPECT_STREQ(MachineFileError("a \xc2").what(), "a \xc2");
  EXPECT_STREQ(MachineFileError("\x1f \x7f~").what(), "\\x1f \\x7f~");
}

TEST(MachineFileTest, MissingFileIsRefused) {
  EXPECT_EQ(ComplaintAboutFile("no such file.toml"), "no such file.toml: cannot be read");
}

TEST(MachineFileTest, FolderIsRefused) {
  EXPECT_EQ(ComplaintAboutFile("."), ".: is no regular file");
}

TEST(MachineFileTest, FileOfMoreThanAMebibyteIsRefused) {
  const std::string path = "machine_file_test_large.toml";
  std::ofstream(path, std::ios::binary) << "device = []\n" << std::string(1 << 20, '#');
  EXPECT_EQ(ComplaintAboutFile(path), path + ": is larger than 1 MiB");
  std::remove(path.c_str());
}

TEST(MachineFileTest, FileOfAMebibyteIsRead) {
  const std::string path = "machine_file_test_largest.toml";
  const std::string text = "device = []\n";
  std::ofstream(path, std::ios::binary) << text << std::string((1 << 20) - text.size(), '#');
  EXPECT_EQ(ComplaintAboutFile(path), "");
  std::remove(path.c_str());
}

}  // namespace

}  // namespace kestrel::tests

#include "command/manual.h"

#include "command/exit_status.h"

namespace kestrel::command {

namespace {

const Parameter kHelp = {"--help", "h", "", "Print this help and end", {}, ""};

Subcommand Survey() {
  return {"survey",
          "Report the processor, the GPUs and the memory",
          {"Reports what the machine offers, once. The formats are text for people; json, whose "
           "schema is installed as survey.schema.json; prometheus, the text format of its "
           "exporters; and labels, lines of key=value as the feature files of Kubernetes' node "
           "feature discovery have them.",
           "A machine without a GPU is no failure. A part that cannot be read is reported as such "
           "in the output, and the exit status is 70."},
          {},
          {{"--format",
            "",
            "FORMAT",
            "How the report is written",
            {"text", "json", "prometheus", "labels"},
            "text"},
           kHelp},
          "kestrel survey --format json",
          "The survey for a program to read"};
}

Subcommand Fits() {
  return {"fits",
          "Say by the exit status whether an amount of memory fits",
          {"Forecasts whether this process could allocate SIZE bytes of memory now, under the "
           "limits of its memory group, and says by how much it fits or fails. The forecast has no "
           "margin and holds for this moment.",
           "With --vram, SIZE is compared with the free memory of one GPU."},
          {{"SIZE",
            "",
            "SIZE",
            "Bytes, or a number with a unit: K, M, G, T, P or KiB ... PiB are powers of 1024, KB "
            "... PB powers of 1000",
            {},
            ""}},
          {{"--vram", "", "", "Compare with the free memory of a GPU", {}, ""},
           {"--device", "", "N", "The HIP number of that GPU", {}, "0"},
           kHelp},
          "kestrel fits 24GiB && ./load-model",
          "Start a program only if its 24 GiB fit"};
}

Subcommand Watch() {
  return {
      "watch",
      "Show processes, free memory and free VRAM over time",
      {"Samples the processor share and the resident memory of each process PID, the available "
       "RAM, and the free VRAM of each GPU. The share is in percent of all processors.",
       "On a terminal it draws a table with a graph for each line, until Ctrl-C. Elsewhere, and on "
       "a terminal that TERM calls dumb, it writes one line for each sample. It ends with the last "
       "of the processes."},
      {{"PID", "", "PID", "The processes to watch; none watches the machine alone", {}, ""}},
      {{"--interval", "", "TIME", "The time between samples, such as 500ms, 1s or 2m", {}, "1s"},
       {"--count", "", "N", "End after N samples", {}, ""},
       {"--format",
        "",
        "FORMAT",
        "How samples are written; json is one object for each line",
        {"text", "json"},
        "text"},
       kHelp},
      "kestrel watch 4711 --interval 500ms",
      "Watch process 4711 twice a second"};
}

Subcommand Explain() {
  return {"explain",
          "Explain which GPUs and which memory limit were found, and why",
          {"Goes step by step through what decides whether a GPU is found: the processor, the HIP "
           "runtimes that were tried, the device files and their permissions, the masks in the "
           "environment, and the graphics cards that the kernel knows. Each step says what was "
           "seen and, where something is wrong, what to do. For memory it names the limit that "
           "decides."},
          {},
          {kHelp},
          "kestrel explain",
          "Find out why no GPU is reported"};
}

Subcommand Record() {
  return {"record",
          "Write this machine's GPUs as a machine file of the simulator",
          {"Writes what the HIP runtime reports as a machine file. The simulated HIP runtime reads "
           "it, so that programs on another machine see the same GPUs. The file holds names and "
           "memory sizes of the GPUs and no other data of the machine."},
          {{"FILE", "", "FILE", "The file to write; standard output if it is not given", {}, ""}},
          {kHelp},
          "kestrel record server.toml",
          "Record this server's GPUs, to simulate them elsewhere"};
}

}  // namespace

const Manual& KestrelManual() {
  static const Manual manual = {
      "kestrel",
      "What this machine offers to a program, and how much of it is free",
      {"Reports the processor, the GPUs that the AMD HIP runtime sees, and the memory that is free "
       "to a process under the limits of its container.",
       "The HIP runtime is found when it is needed; the program also runs without one. It needs a "
       "processor with AVX2; on others only kestrel explain and kestrel record do their work."},
      {kHelp, {"--version", "", "", "Print the version and end", {}, ""}},
      {Survey(), Fits(), Watch(), Explain(), Record()},
      {{kSuccess, "Success; for fits: it fits."},
       {kWouldFail, "fits only: it would fail."},
       {kUndetermined, "fits only: undetermined, or the processor lacks AVX2."},
       {kWrongUsage, "The command line is wrong."},
       {kFailure, "Except for fits: a figure could not be read, or the processor lacks AVX2."},
       {kOutputFailure, "The output could not be written."}},
      {"kestrel-harness(1)"}};
  return manual;
}

// The command line of the harness is fixed, its texts included.
const Manual& HarnessManual() {
  static const Manual manual = {
      "kestrel-harness",
      "Print reports of the hardware survey and the meters of kestrelcore",
      {"Runs the chosen tests of the library kestrelcore and prints their reports, once or in "
       "repeated cycles. It is made to look at the library's figures; scripts use kestrel(1).",
       "An unknown option, or a value that is no number, ends it by an uncaught exception "
       "(SIGABRT). The exit status does not show whether the reports could be written."},
      {{"--cpu-test", "", "", "CPU test", {}, ""},
       {"--pid", "p", "PID", "Process ID", {}, "-1"},
       {"--split_ms", "s", "MS", "CPU measurement split", {}, "500"},
       {"--mem-test", "", "", "Memory test", {}, ""},
       {"--repeat", "r", "N", "Repeat", {}, "1"},
       {"--hardware-test", "", "", "Hardware survey test", {}, ""},
       {"--help", "h", "", "Print usage", {}, ""}},
      {},
      {{0, "Success."}, {1, "No test was chosen, or the CPU test has no process."}},
      {"kestrel(1)"}};
  return manual;
}

}  // namespace kestrel::command

#include "command/watch.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

#include "command/machine_survey.h"
#include "command/terminal.h"
#include "command/watch_sample.h"
#include "command/watch_table.h"

namespace kestrel::command {

namespace {

using Clock = std::chrono::steady_clock;

// How often Ctrl-C and the size of the terminal are looked at.
constexpr std::chrono::milliseconds kAttention{50};

// The shares of processes over one interval, each measured by a thread of its own, since the meter
// blocks. The threads own this record together with their starter.
class Shares {
 public:
  static std::shared_ptr<Shares> Start(const std::vector<ProcessSample>& processes,
                                       std::chrono::milliseconds interval,
                                       std::vector<std::thread>& threads) {
    auto shares = std::make_shared<Shares>();
    shares->processes_ = processes;
    const auto running = std::count_if(processes.begin(), processes.end(),
                                       [](const auto& process) { return process.running; });
    shares->pending_ = static_cast<std::size_t>(running);
    for (std::size_t i = 0; i < processes.size(); ++i) {
      if (processes[i].running) {
        threads.emplace_back([=] { shares->Measure(i, interval); });
      }
    }
    return shares;
  }

  // Returns whether all are there, after waiting for them for a moment.
  bool AreComplete() {
    std::unique_lock lock(mutex_);
    return complete_.wait_for(lock, kAttention, [this] { return pending_ == 0; });
  }

  // Once they are complete.
  [[nodiscard]] const std::vector<ProcessSample>& processes() const { return processes_; }

 private:
  void Measure(std::size_t index, std::chrono::milliseconds interval) {
    kestrel_result result = NewResult();
    ProcessSample process = processes_[index];
    process.running = kestrel_cpu_usage(process.pid, static_cast<std::int32_t>(interval.count()),
                                        &process.percent, &result) == KESTREL_OK;
    process.was_measured = process.was_measured || process.running;
    const std::lock_guard lock(mutex_);
    processes_[index] = process;
    if (--pending_ == 0) {
      complete_.notify_one();
    }
  }

  std::mutex mutex_;
  std::condition_variable complete_;
  std::vector<ProcessSample> processes_;
  std::size_t pending_ = 0;
};

// The threads of one interval. A user who interrupts does not wait for them: those that were not
// joined end by themselves.
class Threads {
 public:
  Threads() = default;
  Threads(const Threads&) = delete;
  Threads& operator=(const Threads&) = delete;
  ~Threads() {
    for (std::thread& thread : threads_) {
      if (thread.joinable()) {
        thread.detach();
      }
    }
  }

  std::vector<std::thread>& list() { return threads_; }

  // On Windows, a process that ends while one of its threads ends may hang.
  void Join() {
    for (std::thread& thread : threads_) {
      thread.join();
    }
  }

 private:
  std::vector<std::thread> threads_;
};

bool AnyRuns(const Sample& sample) {
  return std::any_of(sample.processes.begin(), sample.processes.end(),
                     [](const ProcessSample& process) { return process.running; });
}

// Where samples go.
class Display {
 public:
  virtual ~Display() = default;
  virtual void Show(const Sample& sample) = 0;
  virtual void KeepUp() {}  // called several times a second
};

class Lines : public Display {
 public:
  Lines(const Writer& write, bool json) : write_(write), json_(json) {}
  void Show(const Sample& sample) override {
    write_(json_ ? SampleJson(sample) : SampleText(sample));
  }

 private:
  const Writer& write_;
  bool json_;
};

// A table on a screen of its own. When it ends, the last table stays on the former screen.
class LiveTable : public Display {
 public:
  LiveTable(const Writer& write, const std::string& title)
      : write_(write), table_(title, ShowsUnicode()) {
    Enter();
  }
  LiveTable(const LiveTable&) = delete;
  LiveTable& operator=(const LiveTable&) = delete;
  ~LiveTable() override {
    try {
      Leave();
      for (const std::string& line : table_.Lines(TerminalSize())) {
        write_(line + "\n");
      }
    } catch (const OutputError&) {  // the terminal has gone
    }
  }

  void Show(const Sample& sample) override {
    table_.Add(sample);
    Draw();
  }

  void KeepUp() override {
    if (IsStopRequested()) {
      Leave();
      StopProcess();
      Enter();
      Draw();
    }
    const ScreenSize size = TerminalSize();
    if (size.columns != drawn_.columns || size.rows != drawn_.rows) {
      Draw();
    }
  }

 private:
  // To a screen of its own, without a cursor, and back.
  void Enter() { write_("\x1B[?1049h\x1B[?25l"); }
  void Leave() { write_("\x1B[?25h\x1B[?1049l"); }

  // From the top left corner; each line and then the rest of the screen are erased.
  void Draw() {
    drawn_ = TerminalSize();
    std::string screen = "\x1B[H";
    const auto lines = table_.Lines(drawn_);
    for (std::size_t i = 0; i < lines.size(); ++i) {
      screen += "\x1B[K" + lines[i] + (i + 1 < lines.size() ? "\r\n" : "");
    }
    write_(screen + "\x1B[J");
  }

  const Writer& write_;
  LiveTerminal terminal_;
  WatchTable table_;
  ScreenSize drawn_{0, 0};
};

Sample FirstSample(const WatchRequest& request) {
  const MachineSurvey survey = SurveyMachine();
  Sample sample;
  sample.physical_bytes = survey.memory.physical_bytes;
  for (const Gpu& gpu : survey.gpus) {
    sample.vram.push_back({gpu.device, gpu.total_bytes, gpu.free_bytes});
  }
  for (const int pid : request.pids) {
    sample.processes.push_back({pid, true, 0, std::nullopt});
  }
  return sample;
}

// Takes one sample over the interval. Returns false if the user interrupts.
bool TakeSample(Sample& sample, std::chrono::milliseconds interval, Display& display) {
  const Clock::time_point end = Clock::now() + interval;
  Threads threads;
  const auto shares = Shares::Start(sample.processes, interval, threads.list());
  while (!shares->AreComplete() || (Clock::now() < end && sample.processes.empty())) {
    if (IsInterrupted()) {
      return false;
    }
    display.KeepUp();
    if (sample.processes.empty()) {
      std::this_thread::sleep_for(
          std::clamp<Clock::duration>(end - Clock::now(), Clock::duration::zero(), kAttention));
    }
  }
  threads.Join();
  sample.processes = shares->processes();
  MeasureMemory(sample);
  sample.time = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::system_clock::now().time_since_epoch());
  return !IsInterrupted();
}

Outcome Watch(const WatchRequest& request, Display& display) {
  Sample sample = FirstSample(request);
  for (std::uint64_t count = 0; request.count.value_or(UINT64_MAX) > count; ++count) {
    if (!TakeSample(sample, request.interval, display)) {
      return {};
    }
    display.Show(sample);
    if (!request.pids.empty() && !AnyRuns(sample)) {
      const bool never_ran = count == 0;
      return {never_ran ? kFailure : kSuccess, "",
              never_ran ? "kestrel watch: none of the processes can be measured" : ""};
    }
  }
  return {};
}

}  // namespace

Outcome RunWatch(const WatchRequest& request, const Writer& write) {
  CatchInterrupts();
  if (IsTerminal() && !request.json) {
    LiveTable table(write, "kestrel watch, every " + std::to_string(request.interval.count()) +
                               " ms, Ctrl-C ends");
    return Watch(request, table);
  }
  Lines lines(write, request.json);
  return Watch(request, lines);
}

}  // namespace kestrel::command

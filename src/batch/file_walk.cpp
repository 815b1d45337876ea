#include "batch/file_walk.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <utility>

#include "batch/file_host.h"
#include "config/settings.h"
#include "core/names.h"

namespace pxm {
namespace {

constexpr size_t kNone = static_cast<size_t>(-1);

// The bookkeeping of one walk: which files may start, which are done, and the results handed
// on in order.
class Walk {
 public:
  Walk(Host& host, std::span<const std::string> files, const FileDriver& driver,
       const WalkOptions& options, const ResultHandler& onResult)
      : host_(host),
        files_(files),
        driver_(driver),
        options_(options),
        onResult_(onResult),
        settings_(CurrentSettings()),
        results_(files.size()),
        notices_(files.size()),
        state_(files.size(), State::kWaiting),
        before_(files.size(), kNone) {
    if (!options.orderKey) return;
    std::unordered_map<std::string, size_t> last;
    for (size_t i = 0; i < files.size(); ++i) {
      auto [it, fresh] = last.try_emplace(options.orderKey(files[i]), i);
      if (!fresh) before_[i] = std::exchange(it->second, i);
    }
  }

  std::vector<FileResult> Run() {
    const unsigned jobs = std::max(1u, options_.jobs);
    if (jobs == 1 || files_.size() <= 1) {
      // One after the other on this thread: no lock, and the host sees exactly the calls of a
      // plain loop.
      for (size_t i = 0; i < files_.size() && !stopped_; ++i) {
        if (host_.AbortRequested()) break;
        Finish(RunFile(i, nullptr));
      }
    } else {
      std::vector<std::jthread> workers;
      const size_t count = std::min<size_t>(jobs, files_.size());
      for (size_t w = 0; w < count; ++w) workers.emplace_back([this] { Work(); });
    }
    std::vector<FileResult> ran;
    for (size_t i = 0; i < files_.size(); ++i)
      if (state_[i] == State::kDone) ran.push_back(std::move(results_[i]));
    return ran;
  }

 private:
  enum class State { kWaiting, kRunning, kDone };

  FileResult RunFile(size_t i, std::mutex* serial) {
    FileHost fileHost(host_, serial);
    OperationSettings settings(TakeCopy(serial));
    FileResult result;
    result.index = i;
    result.source = files_[i];
    result.code = driver_(fileHost, i, files_[i]);
    result.output = fileHost.Output();
    notices_[i] = fileHost.Notices();
    return result;
  }

  // The copy is taken when the file starts, under the lock when files run side by side.
  Settings TakeCopy(std::mutex* serial) {
    if (!serial) return settings_;
    std::lock_guard lock(*serial);
    return settings_;
  }

  // Records a result and hands on every result now known in order. Called with the lock held
  // when files run side by side.
  void Finish(FileResult result) {
    const size_t i = result.index;
    state_[i] = State::kDone;
    if (options_.stopAfter && options_.stopAfter(result)) stopped_ = true;
    results_[i] = std::move(result);
    // Files that will never start have no result; those after them do not wait for one.
    const bool ending = stopped_ || host_.AbortRequested();
    while (reported_ < files_.size()) {
      if (state_[reported_] == State::kDone) {
        for (Notice notice : notices_[reported_]) host_.Notify(notice);
        if (onResult_) onResult_(results_[reported_]);
      } else if (!(ending && state_[reported_] == State::kWaiting)) {
        break;
      }
      ++reported_;
    }
  }

  // The first file that may start: not begun, and the file it depends on finished.
  size_t NextFile() const {
    for (size_t i = next_; i < files_.size(); ++i)
      if (state_[i] == State::kWaiting && (before_[i] == kNone || state_[before_[i]] == State::kDone))
        return i;
    return kNone;
  }

  bool AllStarted() const {
    for (size_t i = next_; i < files_.size(); ++i)
      if (state_[i] == State::kWaiting) return false;
    return true;
  }

  void Work() {
    std::unique_lock lock(mutex_);
    while (true) {
      if (stopped_ || host_.AbortRequested() || AllStarted()) return;
      const size_t i = NextFile();
      if (i == kNone) {
        changed_.wait(lock);
        continue;
      }
      state_[i] = State::kRunning;
      while (next_ < files_.size() && state_[next_] != State::kWaiting) ++next_;
      lock.unlock();
      FileResult result = RunFile(i, &mutex_);
      lock.lock();
      Finish(std::move(result));
      changed_.notify_all();
    }
  }

  Host& host_;
  std::span<const std::string> files_;
  const FileDriver& driver_;
  const WalkOptions& options_;
  const ResultHandler& onResult_;
  const Settings& settings_;
  std::vector<FileResult> results_;
  std::vector<std::vector<Notice>> notices_;  // each file's, handed on with its result
  std::vector<State> state_;
  std::vector<size_t> before_;  // the file each one waits for, or kNone
  size_t next_ = 0;             // no file before this one is still waiting
  size_t reported_ = 0;         // results before this one were handed on
  bool stopped_ = false;
  std::mutex mutex_;
  std::condition_variable changed_;
};

}  // namespace

std::vector<FileResult> WalkFiles(Host& host, std::span<const std::string> files,
                                  const FileDriver& driver, const WalkOptions& options,
                                  const ResultHandler& onResult) {
  return Walk(host, files, driver, options, onResult).Run();
}

std::vector<std::string> TaggedFiles(std::span<const ListItem> items) {
  std::vector<std::string> files;
  for (const ListItem& item : items)
    if (item.selected && !(!item.text.empty() && item.text[0] == '[')) files.push_back(item.text);
  return files;
}

std::string OutputNameKey(const std::string& source) {
  return ToLowerAscii(StripExtension(NamePart(source))).substr(0, 6);
}

}  // namespace pxm

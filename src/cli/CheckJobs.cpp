#include "cli/CheckJobs.h"

#include "tool/config/ConfigLoader.h"
#include "tool/output/Platform.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <map>
#include <numeric>
#include <optional>
#include <utility>

namespace kes::cli {

namespace {

using Progress = std::function<void(std::uint64_t)>;

ConfigReport CheckConfig(ConfigLoader& loader, const ConfigSource& source, bool summary,
                         std::chrono::milliseconds lockWait, Progress progress,
                         const TakeFinding& found = {}) {
    try {
        const ConfigInput input(source, InputAccess::READ, lockWait);
        const auto pass = [&](const Finding& finding) { found(input.Name(), finding); };
        ConfigReport report = loader.Read(input, std::move(progress),
                                          found ? ConfigLoader::Found(pass) : ConfigLoader::Found());
        if (summary) report.summary = loader.Summary();
        return report;
    } catch (const Failure& failure) {
        return FailureReport(source.word, failure.what());
    }
}

/// Messages between the processes are JSON values in their binary form, which keeps every byte of a text.
std::string Packed(const Json& json) {
    std::string bytes;
    Json::to_cbor(json, bytes);
    return bytes;
}

/// What a child does: it starts the library and answers each file with its report, until there are no more.
void Serve(const Channel& channel, const Globals& globals, const CheckWork& work) {
    try {
        ConfigLoader loader(globals);
        const auto progress = [&](std::uint64_t bytes) { channel.Send(Packed({{"progress", bytes}})); };
        for (std::string request; channel.Receive(request);) {
            const ConfigSource& source = work.sources[Json::from_cbor(request).get<std::size_t>()];
            const ConfigReport report =
                CheckConfig(loader, source, work.summaries, globals.lockWait, progress);
            if (!channel.Send(Packed({{"report", ToJson(report)}}))) return;
        }
    } catch (const Failure& failure) {
        channel.Send(Packed({{"failure", failure.what()}, {"exit", static_cast<int>(failure.Code())}}));
    } catch (const std::exception& error) {
        channel.Send(Packed({{"failure", error.what()}, {"exit", static_cast<int>(EXIT_SYSTEM)}}));
    }
}

/// Hands the files out to children, one at a time to each, and puts the reports in order.
class Pool {
public:
    Pool(const Globals& globals, const CheckWork& work, const std::function<void(const ConfigReport&)>& take,
         ProgressBar& bar)
        : mGlobals(globals), mWork(work), mTake(take), mBar(bar) {}
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;
    ~Pool() {
        while (!mWorkers.empty()) End(0);
    }

    void Run() {
        while (mWorkers.size() < mWork.jobs && mNextFile < mWork.sources.size() && Start()) {
        }
        while (!mWorkers.empty()) Answer(WaitForWorker(mWorkers));
    }

private:
    /// The file that a worker is at.
    struct Task {
        std::size_t file;
        std::uint64_t bytes = 0;
    };

    /// False when there is no room for another one; those that run then do the work.
    bool Start() {
        const auto serve = [this](const Channel& channel) { Serve(channel, mGlobals, mWork); };
        if (!StartWorker(mWorkers, serve)) {
            if (!mWorkers.empty()) return false;
            throw Failure(EXIT_SYSTEM, std::string("cannot start a process: ") + std::strerror(errno));
        }
        mTasks.push_back({mNextFile++});
        mWorkers.back().channel.Send(Packed(mTasks.back().file));
        return true;
    }

    std::string End(std::size_t number) {
        mTasks.erase(mTasks.begin() + static_cast<std::ptrdiff_t>(number));
        return EndWorker(mWorkers, number);
    }

    void Answer(std::size_t number) {
        Task& task = mTasks[number];
        std::string bytes;
        if (!mWorkers[number].channel.Receive(bytes)) {
            const std::size_t file = task.file;
            Take(file, FailureReport(mWork.sources[file].word, "the process that checked it " + End(number)));
            if (mNextFile < mWork.sources.size()) Start();
            return;
        }
        const Json answer = Json::from_cbor(bytes);
        if (const auto progress = answer.find("progress"); progress != answer.end()) {
            task.bytes = *progress;
            ShowProgress();
            return;
        }
        if (const auto failure = answer.find("failure"); failure != answer.end()) {
            throw Failure(static_cast<ExitCode>(answer.at("exit").get<int>()), *failure);
        }
        Take(task.file, ReportFromJson(answer.at("report")));
        if (mNextFile == mWork.sources.size()) {
            End(number);
            return;
        }
        task = {mNextFile++};
        mWorkers[number].channel.Send(Packed(task.file));
    }

    void Take(std::size_t file, ConfigReport report) {
        mDone += ConfigInput::SizeOf(mWork.sources[file]);
        mReports.emplace(file, std::move(report));
        for (auto first = mReports.begin(); first != mReports.end() && first->first == mNextReport;
             first = mReports.erase(first)) {
            mTake(first->second);
            ++mNextReport;
        }
        ShowProgress();
    }

    void ShowProgress() {
        mBar.Show(std::accumulate(mTasks.begin(), mTasks.end(), mDone,
                                  [](std::uint64_t sum, const Task& task) { return sum + task.bytes; }));
    }

    const Globals& mGlobals;
    const CheckWork& mWork;
    const std::function<void(const ConfigReport&)>& mTake;
    ProgressBar& mBar;
    std::vector<Worker> mWorkers;
    std::vector<Task> mTasks;  ///< of the workers, in their order
    std::size_t mNextFile = 0;
    std::size_t mNextReport = 0;
    std::map<std::size_t, ConfigReport> mReports;  ///< whose turn has not come
    std::uint64_t mDone = 0;                       ///< bytes of the texts that are done
};

}  // namespace

void CheckConfigs(const Globals& globals, const CheckWork& work, const TakeFinding& found,
                  const std::function<void(const ConfigReport&)>& take, ProgressBar& bar) {
    if (work.jobs > 1 && work.sources.size() > 1) {
        Pool(globals, work, take, bar).Run();
        return;
    }
    ConfigLoader loader(globals);
    std::uint64_t done = 0;
    for (const ConfigSource& source : work.sources) {
        take(CheckConfig(
            loader, source, work.summaries, globals.lockWait,
            [&](std::uint64_t bytes) { bar.Show(done + bytes); }, found));
        done += ConfigInput::SizeOf(source);
        bar.Show(done);
    }
}

}  // namespace kes::cli

#include "window/Contender.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "window/Rest.h"

namespace ombrel::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds lookInterval(2), restInterval(20), pause(300);
/// Of the display: what a blinking cursor, a clock or the shadow of a pointer may change.
constexpr std::size_t unimportantPixels = 200;

double secondsSince(Clock::time_point began) {
    return std::chrono::duration<double>(Clock::now() - began).count();
}

/// How long a thread goes on without waiting for anything.
class Stretch {
public:
    void look(const ProcessFacts::Schedule& now) {
        if (!last_ || now.waits != last_->waits) last_ = now;
        longest_ = std::max(longest_, now.busy - last_->busy);
    }
    [[nodiscard]] double longest() const { return static_cast<double>(longest_) / 1e9; }

private:
    std::optional<ProcessFacts::Schedule> last_; ///< the first look since it waited last
    std::int64_t longest_ = 0;
};

} // namespace

Contender::Contender(std::string name, std::vector<std::string> command, const Display& display,
                     const std::string& worldFolder)
    : name_(std::move(name)), command_(std::move(command)), display_(&display), world_(display, worldFolder),
      desk_(display.picture()) {}

std::unique_ptr<Process> Contender::start(const std::string& folder) const {
    auto words = command_;
    words.push_back(folder);
    return std::make_unique<Process>(words, world_.variables());
}

bool Contender::waitForRest(const Process& process, std::chrono::seconds limit) const {
    Rest rest(process.began());
    Picture shown = desk_;
    auto changed = Clock::now();
    while (Clock::now() - process.began() < limit) {
        passOn(restInterval);
        rest.look(ProcessFacts::processorTicks(process.id()));
        if (display_->differences(shown) > unimportantPixels) {
            shown = display_->picture();
            changed = Clock::now();
        }
        const bool hasWindow = display_->differences(desk_) > unimportantPixels;
        if (hasWindow && rest.isAtRest() && Clock::now() - changed > Rest::span) return true;
        if (process.hasEnded()) return false;
    }
    return false;
}

/// It may rest while it waits for others, its window still empty; or have put something off.
bool Contender::waitForLongRest(const Process& process) const {
    constexpr std::chrono::seconds aftermath(5);
    if (!waitForRest(process, emptyBound)) return false;
    passOn(aftermath);
    return waitForRest(process, emptyBound + aftermath);
}

void Contender::end(std::unique_ptr<Process> process) const {
    process.reset();
    const auto began = Clock::now();
    constexpr std::chrono::seconds patience(5);
    while (display_->differences(desk_) > unimportantPixels && Clock::now() - began < patience)
        std::this_thread::sleep_for(restInterval);
    std::this_thread::sleep_for(pause);
}

bool Contender::learnEmpty(const std::string& folder) {
    // Twice: first starts make settings and caches of their own.
    bool isAtRest = true;
    for (int times = 0; times < 2 && isAtRest; ++times) {
        auto process = start(folder);
        isAtRest = waitForLongRest(*process);
        empty_ = display_->picture();
        end(std::move(process));
    }
    return isAtRest;
}

bool Contender::learn(const std::string& folder) {
    folder_ = folder;
    auto process = start(folder);
    const bool isAtRest = waitForRest(*process);
    learningTime_ = secondsSince(process->began());
    look_ = std::make_unique<Look>(desk_, empty_, display_->picture());
    end(std::move(process));
    return isAtRest && look_->ink() > 0;
}

Showing Contender::show(Until until) {
    Showing showing;
    auto process = start(folder_);
    const auto began = process->began();
    Rest rest(began);
    Stretch stretch;
    bool hasWindow = false;
    constexpr double notYet = -1;
    double complete = notYet;
    auto lastLook = began;
    while (Clock::now() - began < bound && !process->hasEnded()) {
        passOn(lookInterval);
        hasWindow = hasWindow || look_->showsWindow(*display_);
        if (!showing.rows && look_->showsRows(*display_)) showing.rows = secondsSince(began);
        if (showing.rows && until == Until::rows) break;
        if (hasWindow) stretch.look(ProcessFacts::mainThread(process->id()));
        rest.look(ProcessFacts::processorTicks(process->id()));
        if (!showing.rows || Clock::now() - lastLook < restInterval) continue;
        lastLook = Clock::now();
        if (!look_->isComplete(*display_))
            complete = notYet;
        else if (complete < 0)
            complete = secondsSince(began);
        if (complete < 0 || !rest.isAtRest()) continue;
        showing.rest = std::max(complete, rest.since());
        break;
    }
    showing.longestStretch = stretch.longest();
    showing.memory = ProcessFacts::memory(process->id());
    end(std::move(process));
    return showing;
}

std::optional<ProcessFacts::Memory> Contender::memoryOver(const std::string& folder) {
    auto process = start(folder);
    const bool isAtRest = waitForLongRest(*process);
    const auto memory = ProcessFacts::memory(process->id());
    end(std::move(process));
    return isAtRest ? std::optional(memory) : std::nullopt;
}

ProcessFacts::Activity Contender::idleActivity(const std::string& folder, std::chrono::seconds span,
                                               int spans) {
    auto process = start(folder);
    if (!waitForLongRest(*process)) fail(name_ + " does not come to rest");
    ProcessFacts::Activity most;
    for (int i = 0; i < spans; ++i) {
        const auto before = ProcessFacts::activity(process->id());
        passOn(span);
        const auto after = ProcessFacts::activity(process->id());
        most.processor = std::max(most.processor, after.processor - before.processor);
        most.wakeUps = std::max(most.wakeUps, after.wakeUps - before.wakeUps);
    }
    end(std::move(process));
    return most;
}

} // namespace ombrel::bench

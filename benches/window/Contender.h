#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "window/Look.h"
#include "window/World.h"

namespace ombrel::bench {

/// What one start of a program has come to; times in seconds from its start.
struct Showing {
    std::optional<double> rows; ///< painted; nothing within the bound
    std::optional<double> rest; ///< everything is shown and the program is at rest; nothing within the bound
    double longestStretch = 0;  ///< that the main thread did not wait for anything, once the window was there
    ProcessFacts::Memory memory = {}; ///< at the end
};

/// A program that shows folders, looked at from outside only.
class Contender {
public:
    /// How long anything is waited for.
    static constexpr std::chrono::seconds bound{60};
    /// The same for a window over an empty folder.
    static constexpr std::chrono::seconds emptyBound{20};
    enum class Until { rows, rest };

    /// `command` comes before the folder. Its world is made in `worldFolder`.
    Contender(std::string name, std::vector<std::string> command, const Display& display,
              const std::string& worldFolder);

    [[nodiscard]] const std::string& name() const noexcept { return name_; }
    [[nodiscard]] const World& world() const noexcept { return world_; }

    /// Learns the window's picture over a folder that is empty. Answers whether the program comes to rest.
    [[nodiscard]] bool learnEmpty(const std::string& folder);
    /// Learns the picture over the folder that is measured next; the first start, which is not counted.
    /// Answers whether the program comes to rest and its rows can be told.
    [[nodiscard]] bool learn(const std::string& folder);
    /// How long the learning of the last folder took until its end, in seconds.
    [[nodiscard]] double learningTime() const noexcept { return learningTime_; }

    /// One start over the folder that was learned last.
    [[nodiscard]] Showing show(Until until);
    /// What it holds at rest over a folder.
    [[nodiscard]] std::optional<ProcessFacts::Memory> memoryOver(const std::string& folder);
    /// What all its threads do in `span`, with the window over `folder` and nothing going on.
    [[nodiscard]] ProcessFacts::Activity idleActivity(const std::string& folder, std::chrono::seconds span,
                                                      int spans);

private:
    [[nodiscard]] std::unique_ptr<Process> start(const std::string& folder) const;
    /// Waits until the program does nothing and its picture stays as it is.
    [[nodiscard]] bool waitForRest(const Process& process, std::chrono::seconds limit = bound) const;
    [[nodiscard]] bool waitForLongRest(const Process& process) const;
    /// Ends the program and waits until its window has gone.
    void end(std::unique_ptr<Process> process) const;

    std::string name_;
    std::vector<std::string> command_;
    const Display* display_;
    World world_;
    Picture desk_;
    Picture empty_;
    std::string folder_;
    std::unique_ptr<Look> look_;
    double learningTime_ = 0;
};

} // namespace ombrel::bench

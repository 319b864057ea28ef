#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace ombrel::bench {

/// Elapsed and processor time (all threads, kernel included) of one run, in seconds.
struct Duration {
    double elapsed = 0;
    double processor = 0;
};

/// Times `body` in this process.
[[nodiscard]] Duration timed(const std::function<void()>& body);
/// Times a child process from its start to its end; its output goes through a pipe that is read and dropped.
/// Exits the bench with a message when it cannot be started or fails.
[[nodiscard]] Duration timedProcess(const std::vector<std::string>& command);

[[nodiscard]] double median(std::vector<double> values);
[[nodiscard]] double medianElapsed(const std::vector<Duration>& runs);
[[nodiscard]] double medianProcessor(const std::vector<Duration>& runs);

/// Runs each of `contenders` once per round, in an order that turns with the round, so that a busy moment of
/// the machine hits all alike. Answers the runs of each, in the order given.
[[nodiscard]] std::vector<std::vector<Duration>>
interleaved(int rounds, const std::vector<std::function<Duration()>>& contenders);

/// One subject's table: every claim beside what it is measured against in the same run.
class Report {
public:
    explicit Report(std::string subject) : subject_(std::move(subject)) {}

    /// Ours as a ratio to a floor or peer, both in seconds.
    void ratio(const std::string& figure, const std::string& against, double ours, double theirs,
               double target);
    /// The same for figures in another unit.
    void share(const std::string& figure, const std::string& against, double ours, double theirs,
               const std::string& unit, double target);
    /// A figure with a unit and a limit of its own.
    void value(const std::string& figure, double ours, const std::string& unit, double target);
    /// A figure that could not be held against what it was to be, and why; it counts neither as met nor
    /// missed.
    void gap(const std::string& figure, const std::string& against, const std::string& reason);
    void note(const std::string& line) { notes_.push_back(line); }

    /// Prints the table with the facts of the machine. Answers how many figures miss their target.
    int print() const;

private:
    struct Row {
        std::string figure, against, ours, theirs, result, target;
        std::optional<bool> isMet;
    };
    std::string subject_;
    std::vector<Row> rows_;
    std::vector<std::string> notes_;
};

} // namespace ombrel::bench

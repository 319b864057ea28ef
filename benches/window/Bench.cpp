#include "window/Bench.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <sstream>
#include <string_view>

namespace ombrel::bench {
namespace {

constexpr long few = 40, many = 100'000, most = 1'000'000, photographs = 10'000;
constexpr int rounds = 7, longRounds = 5;
constexpr double mebibyte = 1 << 20;
constexpr auto oursName = "Ombrel", floorName = "a bare Qt tree";

struct Peer {
    const char* name;
    const char* program;
    std::vector<std::string> options;
};

const std::vector<Peer>& peers() {
    static const std::vector<Peer> all = {
        {.name = "PCManFM-Qt", .program = "pcmanfm-qt", .options = {"--new-window"}},
        {.name = "Thunar", .program = "thunar", .options = {}},
        {.name = "Dolphin", .program = "dolphin", .options = {"--new-window"}},
        {.name = "Nautilus", .program = "nautilus", .options = {"--new-window"}},
    };
    return all;
}

std::string inMilliseconds(double seconds) {
    char text[32];
    std::snprintf(text, sizeof text, "%.0f ms", seconds * 1e3);
    return text;
}

std::string inMebibytes(double bytes) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f MiB", bytes / mebibyte);
    return text;
}

} // namespace

/// What all starts of one program have come to.
struct WindowBench::Runs {
    Contender* contender = nullptr;
    std::vector<Showing> showings;

    /// The median of what every run has; nothing when one of them lacks it.
    [[nodiscard]] std::optional<double>
    medianOf(const std::function<std::optional<double>(const Showing&)>& figure) const {
        std::vector<double> values;
        for (const Showing& showing : showings) {
            const auto value = figure(showing);
            if (!value) return std::nullopt;
            values.push_back(*value);
        }
        return values.empty() ? std::nullopt : std::optional(median(values));
    }
    [[nodiscard]] std::optional<double> rows() const {
        return medianOf([](const Showing& one) { return one.rows; });
    }
    [[nodiscard]] std::optional<double> rest() const {
        return medianOf([](const Showing& one) { return one.rest; });
    }
    [[nodiscard]] double stretch() const {
        return medianOf([](const Showing& one) { return std::optional(one.longestStretch); }).value_or(0);
    }
    [[nodiscard]] double resident() const {
        return medianOf([](const Showing& one) { return std::optional(one.memory.resident); }).value_or(0);
    }
};

WindowBench::WindowBench(Report& report, const std::string& base) : report_(&report), scratch_(base) {}

std::string WindowBench::folderOf(long entries) {
    auto& folder = folders_[entries];
    if (!folder.empty()) return folder;
    // All are called the same, so that titles do not differ.
    folder = scratch_.folder("of " + std::to_string(entries) + "/Papers");
    makeEmptyFiles(folder, entries);
    return folder;
}

std::unique_ptr<Contender> WindowBench::newContender(const std::string& name,
                                                     const std::vector<std::string>& command) {
    auto made = std::make_unique<Contender>(name, command, display_,
                                            scratch_.folder("world " + std::to_string(++worlds_)));
    if (made->learnEmpty(folderOf(0))) return made;
    report_->note(name + " does not come to rest over an empty folder and is not measured");
    return nullptr;
}

std::vector<Contender*> WindowBench::contenders() {
    if (contenders_.empty()) {
        contenders_.push_back(newContender(oursName, {OMBREL_PATH}));
        if (!contenders_.back()) fail("our window does not come to rest");
        if (auto floor = newContender(floorName, {OMBREL_PROBE_PATH, "bare"}))
            contenders_.push_back(std::move(floor));
        for (const Peer& peer : peers()) {
            std::vector<std::string> command = {programPath(peer.program)};
            if (command.front().empty()) {
                report_->note(std::string(peer.name) + " is not installed and not measured");
                continue;
            }
            command.insert(command.end(), peer.options.begin(), peer.options.end());
            if (auto made = newContender(peer.name, command)) contenders_.push_back(std::move(made));
        }
    }
    std::vector<Contender*> all;
    for (const auto& each : contenders_)
        all.push_back(each.get());
    return all;
}

Contender& WindowBench::ours() {
    return *contenders().front();
}

bool WindowBench::isPeer(const Contender& contender) const {
    return contender.name() != oursName && contender.name() != floorName;
}

std::vector<WindowBench::Runs> WindowBench::race(long entries, int rounds, Contender::Until until) {
    const std::string folder = folderOf(entries);
    std::vector<Runs> races;
    double fastest = std::chrono::duration<double>(Contender::bound).count();
    for (Contender* const each : contenders()) {
        if (!each->learn(folder)) {
            report_->note(each->name() + " does not get ready with " + std::to_string(entries) +
                          " entries within 60 s");
            continue;
        }
        races.push_back({.contender = each, .showings = {}});
        if (isPeer(*each)) fastest = std::min(fastest, each->learningTime());
    }
    for (int round = 0; round < rounds; ++round)
        for (std::size_t i = 0; i < races.size(); ++i) {
            Runs& runs = races[(i + static_cast<std::size_t>(round)) % races.size()];
            const bool isSlow = entries > few && runs.contender->learningTime() > 2 * fastest;
            if (isSlow && !runs.showings.empty()) continue;
            runs.showings.push_back(runs.contender->show(until));
        }
    return races;
}

// ---- Parts

void WindowBench::measureStart() {
    const auto races = race(few, rounds, Contender::Until::rows);
    std::string line = "exec to the rows of 40:";
    const Runs* fastest = nullptr;
    const Runs* our = nullptr;
    for (const Runs& runs : races) {
        const auto rows = runs.rows();
        line += " " + runs.contender->name() + " " + (rows ? inMilliseconds(*rows) : "never") + ";";
        if (runs.contender == &ours()) our = &runs;
        if (isPeer(*runs.contender) && rows && (!fastest || *rows < *fastest->rows())) fastest = &runs;
    }
    report_->note(line);
    const std::string figure = "exec to the painted rows of a folder of 40";
    constexpr double target = 0.55;
    if (!our || !our->rows()) fail("our rows were not told");
    if (!fastest) return report_->gap(figure, "the fastest peer", "no peer here");
    report_->ratio(figure, fastest->contender->name() + ", the fastest", *our->rows(), *fastest->rows(),
                   target);
}

void WindowBench::measureMemory() {
    std::map<Contender*, std::vector<ProcessFacts::Memory>> held;
    const auto all = contenders();
    for (int round = 0; round < longRounds; ++round)
        for (Contender* const each : all) {
            // Each is measured as the first of its kind on the display.
            display_.forgetVisuals();
            if (const auto memory = each->memoryOver(folderOf(0))) held[each].push_back(*memory);
        }
    const auto medianOf = [&held](Contender* which, double ProcessFacts::Memory::* part) {
        std::vector<double> values;
        for (const auto& memory : held[which])
            values.push_back(memory.*part);
        return values.empty() ? 0 : median(values);
    };
    std::string line = "memory of a window over an empty folder, resident / proportional:";
    Contender* leanest = nullptr;
    for (Contender* const each : all) {
        const double resident = medianOf(each, &ProcessFacts::Memory::resident);
        if (resident <= 0) continue;
        line += " " + each->name() + " " + inMebibytes(resident) + " / " +
                inMebibytes(medianOf(each, &ProcessFacts::Memory::proportional)) + ";";
        if (isPeer(*each) && (!leanest || resident < medianOf(leanest, &ProcessFacts::Memory::resident)))
            leanest = each;
    }
    report_->note(line);
    if (leanest && leanest->memoryOver(folderOf(0)))
        if (const auto memory = leanest->memoryOver(folderOf(0)))
            report_->note(leanest->name() + " as the second of its toolkit on the display: " +
                          inMebibytes(memory->resident) + " / " + inMebibytes(memory->proportional));
    const auto row = [&](const char* figure, double ProcessFacts::Memory::* part, double target) {
        if (!leanest) return report_->gap(figure, "the leanest peer", "no peer here");
        report_->share(figure, leanest->name() + ", the leanest", medianOf(&ours(), part) / mebibyte,
                       medianOf(leanest, part) / mebibyte, "MiB", target);
    };
    constexpr double residentTarget = 0.65, proportionalTarget = 0.75;
    row("memory of one window on an empty folder, RSS", &ProcessFacts::Memory::resident, residentTarget);
    row("the same, PSS", &ProcessFacts::Memory::proportional, proportionalTarget);
}

void WindowBench::measureLargeFolder() {
    const auto races = race(many, longRounds, Contender::Until::rest);
    reportLargeFolder(races);
    for (const Runs& runs : races)
        if (const auto empty = runs.contender->memoryOver(folderOf(0)))
            report_->note("memory an entry of 100,000: " + runs.contender->name() + " " +
                          std::to_string(std::lround((runs.resident() - empty->resident) / many)) + " bytes");
}

void WindowBench::reportLargeFolder(const std::vector<Runs>& races) {
    const Runs* fastest = nullptr;
    const Runs* our = nullptr;
    for (const Runs& runs : races) {
        const auto rows = runs.rows(), rest = runs.rest();
        report_->note("100,000 entries, " + runs.contender->name() + ": rows " +
                      (rows ? inMilliseconds(*rows) : "never") + "; at rest " +
                      (rest ? inMilliseconds(*rest) : "never") + "; longest stretch of the main thread " +
                      inMilliseconds(runs.stretch()) + "; RSS " + inMebibytes(runs.resident()) + "; " +
                      std::to_string(runs.showings.size()) + " runs");
        if (runs.contender == &ours()) our = &runs;
        if (isPeer(*runs.contender) && rows && rest && (!fastest || *rows < *fastest->rows()))
            fastest = &runs;
    }
    if (!our || !our->rows() || !our->rest()) fail("our rows of a large folder were not told");
    constexpr double rowsTarget = 0.08, restTarget = 0.2, memoryTarget = 0.4, stretchTarget = 16;
    const std::string rows = "folder of 100,000: exec to first painted rows",
                      rest = "the same, until sorted and idle",
                      stretch = "longest main-thread stretch while it loads, seen from outside",
                      memory = "RSS with it loaded";
    if (!fastest) {
        for (const std::string& figure : {rows, rest, memory})
            report_->gap(figure, "the fastest peer", "no peer here");
        return;
    }
    const std::string against = fastest->contender->name() + ", the fastest";
    report_->ratio(rows, against, *our->rows(), *fastest->rows(), rowsTarget);
    report_->ratio(rest, against, *our->rest(), *fastest->rest(), restTarget);
    report_->value(stretch, our->stretch() * 1e3, "ms", stretchTarget);
    report_->share(memory, against, our->resident() / mebibyte, fastest->resident() / mebibyte, "MiB",
                   memoryTarget);
}

void WindowBench::measureHugeFolder() {
    const auto large = newContender(oursName, {OMBREL_PATH}), huge = newContender(oursName, {OMBREL_PATH});
    if (!large || !huge || !large->learn(folderOf(many)) || !huge->learn(folderOf(most)))
        fail("our rows of a huge folder were not told");
    Runs ofLarge{.contender = large.get(), .showings = {}}, ofHuge{.contender = huge.get(), .showings = {}};
    for (int round = 0; round < longRounds; ++round)
        for (Runs* const runs : {&ofLarge, &ofHuge})
            runs->showings.push_back(runs->contender->show(Contender::Until::rest));
    if (!ofLarge.rows() || !ofHuge.rows()) fail("our rows of a huge folder were not painted");
    constexpr double target = 1.1, bytesTarget = 160;
    report_->ratio("folder of 1,000,000: exec to first painted rows", "ours at 100,000", *ofHuge.rows(),
                   *ofLarge.rows(), target);
    const auto empty = huge->memoryOver(folderOf(0));
    if (!empty) fail("our window over an empty folder does not come to rest");
    report_->value("memory an entry of a shown folder, all of the window's structures included",
                   (ofHuge.resident() - empty->resident) / most, "bytes", bytesTarget);
}

std::map<std::string, double> WindowBench::probe(const std::vector<std::string>& words,
                                                 const World& world) const {
    std::vector<std::string> command = {OMBREL_PROBE_PATH};
    command.insert(command.end(), words.begin(), words.end());
    const Process process(command, world.variables());
    std::map<std::string, double> figures;
    for (std::string line = process.readLine(); !line.empty(); line = process.readLine()) {
        const auto space = line.rfind(' ');
        figures[line.substr(0, space)] = std::atof(line.c_str() + space + 1);
    }
    if (!figures.contains("done")) fail("the probe of " + words.front() + " did not get to its end");
    return figures;
}

void WindowBench::measureGestures() {
    const World world(display_, scratch_.folder("world " + std::to_string(++worlds_)));
    auto figures = probe({"gestures", folderOf(0), folderOf(most)}, world);
    constexpr double stretchTarget = 16, gestureTarget = 50, sortTarget = 400, frameTarget = 8;
    report_->value("longest main-thread stretch while 1,000,000 entries load, the bench's own watchdog, "
                   "worst of 5",
                   figures["stretch"], "ms", stretchTarget);
    report_->value("End key to the last row painted", figures["end"], "ms", gestureTarget);
    report_->value("select all", figures["all"], "ms", gestureTarget);
    report_->value("reversed sort shown", figures["reversed"], "ms", sortTarget);
    for (const char* const view : {"details", "icons"})
        for (const char* const by : {"wheel", "thumb"}) {
            const std::string key = std::string(view) + " " + by;
            report_->value("frame while scrolling " + std::string(view) + " by " + by + ", median",
                           figures[key], "ms", frameTarget);
            report_->value("the same, the worst of 200", figures[key + " worst"], "ms", frameTarget);
        }
}

void WindowBench::measurePhotographs() {
    const World world(display_, scratch_.folder("world " + std::to_string(++worlds_)));
    const std::string folder = scratch_.folder("photographs/Papers");
    (void)probe({"make-photographs", folder, std::to_string(photographs)}, world);
    auto figures = probe({"photographs", folder}, world);
    constexpr double memoryTarget = 64, stretchTarget = 16;
    report_->note("photographs: " + std::to_string(static_cast<int>(figures["shown"])) +
                  " thumbnails were shown; RSS grew by " + inMebibytes(figures["grown"]));
    report_->value("icons view of 10,000 photographs, scrolled through: kept for thumbnails",
                   figures["kept"] / mebibyte, "MiB", memoryTarget);
    report_->value("the same, longest frame", figures["longest"], "ms", stretchTarget);
}

void WindowBench::measureIdleness() {
    constexpr std::chrono::seconds span(10);
    constexpr int spans = 3;
    const auto window = newContender(oursName, {OMBREL_PATH});
    if (!window) fail("our window does not come to rest");
    const auto activity = window->idleActivity(folderOf(few), span, spans);
    report_->value("idle with a window shown: wake-ups in ten seconds, the worst of 3",
                   static_cast<double>(activity.wakeUps), "", 0);
    report_->value("the same, processor time", static_cast<double>(activity.processor) / 1e6, "ms", 0);
}

} // namespace ombrel::bench

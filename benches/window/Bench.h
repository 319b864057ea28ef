#pragma once

#include "support/Report.h"
#include "support/ScratchFolder.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "window/Contender.h"
#include "window/Display.h"

namespace ombrel::bench {

/// The parts of the window's table; each makes the folders that it needs.
class WindowBench {
public:
    /// Everything is made below the folder `base`; rows go to `report`.
    WindowBench(Report& report, const std::string& base);

    /// From the start to the rows of a small folder.
    void measureStart();
    /// What a window over an empty folder holds.
    void measureMemory();
    /// A folder of 100,000.
    void measureLargeFolder();
    /// A folder of 1,000,000, from outside.
    void measureHugeFolder();
    /// The same from inside: how long the main thread is kept, and gestures.
    void measureGestures();
    /// Scrolling through photographs.
    void measurePhotographs();
    /// A window that nobody touches.
    void measureIdleness();

private:
    struct Runs;

    [[nodiscard]] std::string folderOf(long entries);
    /// All that can be installed here, ours first; they know their empty windows.
    [[nodiscard]] std::vector<Contender*> contenders();
    [[nodiscard]] Contender& ours();
    /// Nothing for one that does not come to rest even over an empty folder.
    /// Nothing for one that does not come to rest even over an empty folder.
    [[nodiscard]] std::unique_ptr<Contender> newContender(const std::string& name,
                                                          const std::vector<std::string>& command);
    [[nodiscard]] bool isPeer(const Contender& contender) const;
    /// The runs of each over the folder of so many entries, interleaved. Who takes more than twice as long as
    /// the fastest peer is looked at once.
    [[nodiscard]] std::vector<Runs> race(long entries, int rounds, Contender::Until until);
    /// The figures that the probe answers when it is started with `words`.
    [[nodiscard]] std::map<std::string, double> probe(const std::vector<std::string>& words,
                                                      const World& world) const;
    void reportLargeFolder(const std::vector<Runs>& races);

    Report* report_;
    ScratchFolder scratch_;
    Display display_;
    std::map<long, std::string> folders_;
    std::vector<std::unique_ptr<Contender>> contenders_;
    int worlds_ = 0;
};

} // namespace ombrel::bench

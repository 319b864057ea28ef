#pragma once

#include <memory>
#include <string>
#include <vector>

#include "window/Process.h"

namespace ombrel::bench {

class Display;

/// The home, the folders and the bus of one program, which are nobody else's and stay the same from one start
/// to the next.
class World {
public:
    /// In `folder`, which is made.
    World(const Display& display, std::string folder);

    /// What a program of this world finds in its environment.
    [[nodiscard]] std::vector<std::string> variables() const;
    /// The folder of what is thrown away when room is needed.
    [[nodiscard]] std::string cacheFolder() const { return folder_ + "/cache"; }

private:
    std::string display_;
    std::string folder_;
    std::unique_ptr<Process> bus_;
    std::string busAddress_;
};

} // namespace ombrel::bench

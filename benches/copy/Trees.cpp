#include "copy/Trees.h"

#include "support/NamedTree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "copy/Workshop.h"

namespace ombrel::bench {
namespace {

/// Bytes of which each window is different.
class Noise {
public:
    Noise() : words_(largest / sizeof(std::uint64_t) + 1) {
        std::mt19937_64 random(7);
        std::ranges::generate(words_, random);
    }
    /// Changes as it goes, so that no two files are equal.
    const char* next() {
        ++words_[turn_++ % 16];
        ++words_.front();
        return reinterpret_cast<const char*>(words_.data());
    }
    static constexpr std::size_t largest = std::size_t{1} << 20;

private:
    std::vector<std::uint64_t> words_;
    std::size_t turn_ = 0;
};

void makeFolder(const std::string& path) {
    if (::mkdir(path.c_str(), 0755) != 0) fail("making " + path);
}

void write(const std::string& path, Noise& noise, std::size_t bytes, unsigned mode = 0644) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd < 0) fail("making " + path);
    for (std::size_t left = bytes; left > 0;) {
        const auto count = ::write(fd, noise.next(), std::min(left, Noise::largest));
        if (count <= 0) fail("writing " + path);
        left -= static_cast<std::size_t>(count);
    }
    if (::fchmod(fd, mode) != 0 || ::close(fd) != 0) fail("writing " + path);
}

} // namespace

void makeUniformTree(const std::string& path, int folders, int files, std::size_t bytes) {
    std::mt19937 random(9);
    Noise noise;
    long number = 0;
    makeFolder(path);
    for (int i = 0; i < folders; ++i) {
        const std::string folder = path + "/" + usualName(++number, random);
        makeFolder(folder);
        for (int j = 0; j < files; ++j)
            write(folder + "/" + usualName(++number, random), noise, bytes);
    }
}

void makeMixedTree(const std::string& path, int files) {
    std::mt19937 random(11);
    std::lognormal_distribution<double> sizes(std::log(4000.0), 1.4);
    Noise noise;
    long number = 0;
    makeFolder(path);
    std::vector<std::string> folders{path};
    for (int made = 0; made < files;) {
        // Half of the folders lie in one of the newest, so that some are deep.
        const auto span = random() % 2 ? folders.size() : std::min<std::size_t>(folders.size(), 8);
        const auto& above = folders[folders.size() - 1 - random() % span];
        folders.push_back(above + "/" + usualName(++number, random));
        const std::string folder = folders.back();
        makeFolder(folder);
        const int count = std::min<int>(files - made, static_cast<int>(random() % 25));
        for (int i = 0; i < count; ++i) {
            const std::string file = folder + "/" + usualName(++number, random);
            const auto kind = random() % 100;
            if (kind == 0 && ::symlink("../elsewhere", file.c_str()) != 0) fail("making " + file);
            if (kind == 0) continue;
            const auto bytes = kind == 1 ? 0 : static_cast<std::size_t>(sizes(random));
            write(file, noise, std::min(bytes, Noise::largest), kind < 10 ? 0755 : kind < 12 ? 0444 : 0644);
        }
        made += count;
    }
}

void makeFile(const std::string& path, std::size_t bytes) {
    Noise noise;
    write(path, noise, bytes);
}

} // namespace ombrel::bench

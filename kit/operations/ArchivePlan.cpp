#include "operations/ArchivePlan.h"

#include "base/FileName.h"

#include <span>

namespace ombrel {
namespace {

using Extractor = ArchiveExtractor;

struct Rule {
    std::vector<std::string_view> suffixes;
    Extractor::Part part;
};

// The first that fits decides: an x.tar.gz is unpacked, not only decompressed.
std::span<const Rule> rules() {
    static const std::vector<Rule> all = {
        {{".zip"}, Extractor::Ditto{}},
        {{".tar.gz", ".tar.bz2", ".tar.xz", ".tar.lzma", ".tar.z", ".cpio.gz", ".rar", ".7z",
          ".tar",    ".tgz",     ".tbz",    ".tbz2",     ".tb2",   ".txz",     ".tlz", ".taz",
          ".cpio",   ".cpgz",    ".xar",    ".cab",      ".lha",   ".lzh"},
         Extractor::Libarchive{}},
        {{".aar", ".yaa"}, Extractor::AppleArchive{}},
        {{".gz"}, Extractor::SingleFile{"gzip", {"-dc"}}},
        {{".z"}, Extractor::SingleFile{"gzip", {"-dc"}}},
        {{".bz2"}, Extractor::SingleFile{"bzip2", {"-dc"}}},
        {{".xz"}, Extractor::SingleFile{"xz", {"-dc"}}},
    };
    return all;
}

} // namespace

std::optional<ArchivePlan> extractionPlan(std::string_view name) {
    const std::string lowered = FileName::loweredASCII(name);
    for (const auto& rule : rules())
        for (const auto suffix : rule.suffixes)
            if (lowered.ends_with(suffix))
                return ArchivePlan{{rule.part}, std::string(name.substr(0, name.size() - suffix.size()))};
    return std::nullopt;
}

} // namespace ombrel

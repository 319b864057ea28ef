#pragma once

#include "operations/ArchiveService.h"
#include "support/ScriptedAnswers.h"
#include "support/TempTree.h"

#include <sys/stat.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace ombrel::testing {

/// Archive jobs in one line, with their questions answered by a script.
class ArchiveWorld {
public:
    ScriptedAnswers answers;
    ArchiveSettings settings;
    std::shared_ptr<OperationControl> control = std::make_shared<OperationControl>();
    std::stop_source stop;
    /// Called with every report of progress, on the job's thread.
    std::function<void(const OperationProgress&)> watch;

    OperationReport compress(const std::vector<FileURL>& sources, const FileURL& folder,
                             const std::string& name = {}) {
        return ArchiveService::compress(referencesTo(sources), folder, name, hooks(), stop.get_token(),
                                        settings);
    }

    OperationReport extract(const std::vector<FileURL>& archives) {
        return ArchiveService::extract(referencesTo(archives), hooks(), stop.get_token(), settings);
    }

    OperationHooks hooks() {
        auto hooks = answers.hooks();
        hooks.control = control;
        hooks.progress = [this, keep = hooks.progress](const OperationProgress& progress) {
            keep(progress);
            if (watch) watch(progress);
        };
        return hooks;
    }

    static std::vector<FileReference> referencesTo(const std::vector<FileURL>& urls) {
        std::vector<FileReference> references;
        for (const auto& url : urls)
            references.push_back(FileReference::sampling(url));
        return references;
    }
};

/// Runs a line of shell in a folder, with the locale that names need. Answers whether it ended well.
[[nodiscard]] inline bool shell(const std::string& folder, const std::string& line) {
    const std::string command =
        "cd '" + folder + "' && export LC_ALL=C.UTF-8 && { " + line + "\n} >/dev/null 2>&1";
    return std::system(command.c_str()) == 0;
}

/// A program of that name in a folder, to stand in for a tool.
inline void fakeTool(const TempTree& tree, const std::string& path, const std::string& script) {
    tree.file(path, "#!/bin/sh\n" + script + "\n");
    ::chmod(tree.path(path).c_str(), 0755);
}

} // namespace ombrel::testing

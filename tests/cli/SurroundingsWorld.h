#pragma once

#include "support/ChildProcess.h"
#include "support/TempTree.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ombrel::testing {

/// Runs commands for a user whose folders are in the tree.
class Surroundings : public ::testing::Test {
protected:
    [[nodiscard]] ChildProcess::Setting setting() const {
        return {.workingFolder = tree.path(),
                .variables = {"HOME=" + tree.path(home), "XDG_CONFIG_HOME=" + tree.path("config"),
                              "XDG_DATA_HOME=" + tree.path(home.empty() ? "data" : home)}};
    }
    [[nodiscard]] static std::vector<std::string> command(std::vector<std::string> words) {
        words.insert(words.begin(), OMBRELCTL_PATH);
        return words;
    }
    [[nodiscard]] ChildResult run(std::vector<std::string> words) const {
        return ChildProcess(command(std::move(words)), setting()).finish();
    }
    [[nodiscard]] ChildResult runAsNobody(std::vector<std::string> words) const {
        auto changed = setting();
        changed.asNobody = true;
        return ChildProcess(command(std::move(words)), changed).finish();
    }
    [[nodiscard]] std::unique_ptr<ChildProcess> startOnTerminal(std::vector<std::string> words) const {
        auto changed = setting();
        changed.onTerminal = true;
        return std::make_unique<ChildProcess>(command(std::move(words)), changed);
    }
    [[nodiscard]] static std::vector<QJsonObject> objectsIn(const std::string& output) {
        std::vector<QJsonObject> found;
        for (const auto& line : QByteArray::fromStdString(output).split('\n'))
            if (!line.isEmpty()) found.push_back(QJsonDocument::fromJson(line).object());
        return found;
    }
    [[nodiscard]] std::vector<QJsonObject> objects(std::vector<std::string> words) const {
        words.emplace_back("--json");
        return objectsIn(run(std::move(words)).output);
    }
    [[nodiscard]] static std::string text(const QJsonObject& object, const char* key) {
        return object.value(QString::fromUtf8(key)).toString().toStdString();
    }

    TempTree tree;
    std::string home; ///< the user's home in the tree, with the user's data in it; empty for the tree itself
};

} // namespace ombrel::testing

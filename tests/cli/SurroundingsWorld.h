#pragma once

#include "support/ChildProcess.h"
#include "support/TempTree.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace ombrel::testing {

/// Runs commands for a user whose folders are in the tree.
class Surroundings : public ::testing::Test {
protected:
    [[nodiscard]] ChildProcess::Setting setting() const {
        return {.workingFolder = tree.path(),
                .variables = {"HOME=" + tree.path(), "XDG_CONFIG_HOME=" + tree.path("config"),
                              "XDG_DATA_HOME=" + tree.path("data")}};
    }
    [[nodiscard]] ChildResult run(std::vector<std::string> words) const {
        words.insert(words.begin(), OMBRELCTL_PATH);
        return ChildProcess(words, setting()).finish();
    }
    [[nodiscard]] ChildResult runAsNobody(std::vector<std::string> words) const {
        words.insert(words.begin(), OMBRELCTL_PATH);
        auto changed = setting();
        changed.asNobody = true;
        return ChildProcess(words, changed).finish();
    }
    [[nodiscard]] std::vector<QJsonObject> objects(std::vector<std::string> words) const {
        words.emplace_back("--json");
        std::vector<QJsonObject> found;
        for (const auto& line : QByteArray::fromStdString(run(std::move(words)).output).split('\n'))
            if (!line.isEmpty()) found.push_back(QJsonDocument::fromJson(line).object());
        return found;
    }
    [[nodiscard]] static std::string text(const QJsonObject& object, const char* key) {
        return object.value(QString::fromUtf8(key)).toString().toStdString();
    }

    TempTree tree;
};

} // namespace ombrel::testing

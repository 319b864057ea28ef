#pragma once

#include "browser/BrowserPrompter.h"
#include "services/WorkspaceOpener.h"

#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace ombrel::testing {

/// A desktop that opens nothing and writes down what it was asked to.
class ScriptedWorkspace final : public WorkspaceOpener {
public:
    std::expected<OpeningFacts, Text> examine(const FileURL& url) override {
        const auto known = facts.find(url.name());
        if (known != facts.end()) return known->second;
        return OpeningFacts{.type = "text/plain"};
    }
    ApplicationChoice applicationsFor(std::span<const FileURL> urls) override {
        note("applications", urls);
        return {.applications = {editor()}, .hasDefault = true, .types = {"text/plain"}};
    }
    std::vector<DesktopApplication> allApplications() override { return {editor()}; }
    std::optional<DesktopApplication> describe(const FileURL& desktopFile) override {
        if (desktopFile == editor().file) return editor();
        return std::nullopt;
    }
    std::optional<DesktopApplication> textApplication() override { return editor(); }
    Problems open(std::span<const FileURL> urls, const StartupEnvironment&) override {
        note("open", urls);
        return failing(urls);
    }
    Problems openWith(const DesktopApplication& application, std::span<const FileURL> urls,
                      const StartupEnvironment&) override {
        note(application.name, urls);
        return failing(urls);
    }
    Problems run(const FileURL& url, const StartupEnvironment&) override {
        note("run", {&url, 1});
        return failing({&url, 1});
    }
    std::optional<Text> openTerminal(const FileURL& folder, const StartupEnvironment&) override {
        note("terminal", {&folder, 1});
        if (problems.contains(folder.name())) return problems.find(folder.name())->second.text;
        return std::nullopt;
    }
    std::optional<Text> setDefault(std::span<const std::string> types,
                                   const DesktopApplication& application) override {
        note("default " + application.name + " of " + types.front(), {});
        return defaultProblem;
    }

    static DesktopApplication editor() {
        return {"editor.desktop", "Editor", "editor", *FileURL::fromPath("/apps/editor.desktop")};
    }
    /// "open a.txt b.txt": what was asked and the names it was about, in the order in which it came.
    [[nodiscard]] std::vector<std::string> calls() const {
        const std::scoped_lock lock(mutex_);
        return calls_;
    }

    // By name; set before anything is opened.
    std::map<std::string, std::expected<OpeningFacts, Text>, std::less<>> facts;
    std::map<std::string, OpeningProblem, std::less<>> problems;
    std::optional<Text> defaultProblem = std::nullopt;

private:
    void note(const std::string& what, std::span<const FileURL> urls) {
        std::string call = what;
        for (const auto& url : urls)
            call.append(" ").append(url.name());
        const std::scoped_lock lock(mutex_);
        calls_.push_back(std::move(call));
    }
    [[nodiscard]] Problems failing(std::span<const FileURL> urls) const {
        Problems failed;
        for (const auto& url : urls)
            if (const auto known = problems.find(url.name()); known != problems.end())
                failed.push_back({url, known->second.text, known->second.lacksApplication});
        return failed;
    }

    mutable std::mutex mutex_;
    std::vector<std::string> calls_;
};

/// Answers at once, and keeps what it was asked and told.
class OpeningPrompter final : public BrowserPrompter {
public:
    void ask(const BrowserQuestion& question, Answer answer) override {
        questions.push_back(question);
        answer({.choice = choice});
    }
    void tell(const Text& problem) override { told.push_back(problem); }
    void show(const OperationReport& report) override { reports.push_back(report); }

    BrowserAnswer::Choice choice = BrowserAnswer::Choice::accept;
    std::vector<BrowserQuestion> questions;
    std::vector<Text> told;
    std::vector<OperationReport> reports;
};

} // namespace ombrel::testing

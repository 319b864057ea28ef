#pragma once

#include "base/Text.h"
#include "listing/FileReference.h"
#include "operations/OperationReport.h"

#include <QObject>

#include <cstdint>
#include <functional>
#include <vector>

namespace ombrel {

/// A question that a command of a pane has for the user before it does something.
struct BrowserQuestion {
    enum class Kind : std::uint8_t {
        moveToTrash,
        deletePermanently, ///< always asked
        dissolveFolder,    ///< its contents move up, the empty folder goes
        removeLocation,    ///< the grant, nothing in the folder
        openMany,          ///< more items than one opens by mistake
        runProgram,        ///< a script or a desktop file, which can do anything
        showProtected,     ///< items that belong to the system
    };

    Kind kind;
    /// What it is about; the first ones when there are many.
    std::vector<FileReference> items = {};
    /// How many items it is about.
    std::int64_t count = 0;
};

/// What the user said. Everything but `accept` changes nothing on disk.
struct BrowserAnswer {
    enum class Choice : std::uint8_t {
        decline,
        accept,
        alternative, ///< of `runProgram`: show the text instead
    };

    Choice choice = Choice::decline;
    bool dontAskAgain = false; ///< of `moveToTrash`
};

/// Whoever puts the questions of a pane's commands to the user: the window, a test, the command line. Held
/// weakly by the pane; without one everything that has to be asked is declined. Main thread only, and no call
/// waits: answers come later, or at once.
class BrowserPrompter : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    using Answer = std::function<void(const BrowserAnswer&)>;

    /// `answer` is called once; never when the prompter goes first.
    virtual void ask(const BrowserQuestion& question, Answer answer) = 0;
    /// One sentence about what could not be done, with nothing to decide.
    virtual void tell(const Text& problem) = 0;
    /// What a command that is no job came to, when it did not wholly succeed.
    virtual void show(const OperationReport& report) = 0;
};

} // namespace ombrel

#pragma once

#include "base/FileURL.h"
#include "base/PathInput.h"
#include "base/UserFolders.h"
#include "listing/FileReference.h"

#include <QObject>

#include <optional>
#include <string>
#include <vector>

namespace ombrel {

/// A kind of new file that the user is offered.
struct NewFileTemplate {
    std::string title;         ///< for the menu
    std::string preferredName; ///< bytes: the name of the new file, as far as it is free
    /// What the new file is a copy of; nothing for an empty one.
    std::optional<FileReference> source = std::nullopt;

    friend bool operator==(const NewFileTemplate&, const NewFileTemplate&) = default;
};

/// The kinds of new files that the user is offered: an empty text document, then what lies in his folder of
/// templates, in the order of names. Main thread only; the folder is read by workers.
class NewFileTemplates final : public QObject {
    Q_OBJECT

public:
    /// `config` is the folder that holds the desktop's "user-dirs.dirs".
    explicit NewFileTemplates(FileURL home = PathInput::userHomeDirectory(),
                              FileURL config = UserFolders::config(), QObject* parent = nullptr);

    [[nodiscard]] static NewFileTemplate textDocument();
    [[nodiscard]] const std::vector<NewFileTemplate>& list() const noexcept { return list_; }
    /// Reads the folder again; for whenever the list is about to be shown. `changed` follows where it
    /// differs.
    void refresh();

Q_SIGNALS:
    void changed();

private:
    const FileURL home_, config_;
    std::vector<NewFileTemplate> list_ = {textDocument()};
    bool isReading_ = false;
};

} // namespace ombrel

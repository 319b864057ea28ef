#pragma once

#include "base/FileURL.h"
#include "base/Worker.h"
#include "browser/ItemArrangement.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace ombrel {

/// Completes the last name of a typed address by the folders that are there. Folders are read on a worker;
/// what is read for a text that has changed since is dropped. Main thread only.
class AddressCompletion final : public QObject {
    Q_OBJECT

public:
    static constexpr std::size_t most = 8;

    explicit AddressCompletion(FileURL home, QObject* parent = nullptr);

    /// The text is `text` now; `base` is the folder that is shown. Suggestions that it rules out go at once,
    /// what else begins so comes when the folder has been read.
    void complete(const QString& text, const std::optional<FileURL>& base, const ItemFilter& filter);
    /// Nothing is to be completed any more; what was read is forgotten.
    void cancel();

    /// Whole texts, at most `most`, in the order of their names. Only names that can be typed are among them.
    [[nodiscard]] const QStringList& suggestions() const noexcept { return suggestions_; }

    /// What a text asks for: a folder, and how the names that are wanted begin.
    struct Question {
        FileURL folder;
        QString kept;   ///< what stands before the name and stays
        QString prefix; ///< may be empty

        /// Nothing when no folder can be made of the text.
        [[nodiscard]] static std::optional<Question>
        of(const QString& text, const std::optional<FileURL>& base, const FileURL& home);
    };

Q_SIGNALS:
    void changed();

private:
    struct Read {
        FileURL folder;
        FileItemList folders;
    };
    /// Those of the suggestions that begin as is asked now.
    [[nodiscard]] QStringList narrowed(const Question& question) const;
    void publish(QStringList suggestions);

    FileURL home_;
    QStringList suggestions_;
    std::optional<Read> read_; ///< the folder that the last text was about
    std::uint64_t ticket_ = 0;
    Worker reader_;
};

} // namespace ombrel

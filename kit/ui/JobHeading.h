#pragma once

#include "base/FileURL.h"

#include <QWidget>

#include <functional>

namespace ombrel {

class OperationJob;
class Theme;

/// What a job does, in a line; the folders in it can be opened.
class JobHeading final : public QWidget {
    Q_OBJECT

public:
    using OpenFolder = std::function<void(const FileURL&)>;

    /// `theme` must outlive it. The job is only read here.
    JobHeading(const Theme& theme, const OperationJob& job, OpenFolder openFolder, QWidget* parent = nullptr);

private:
    void addFolder(const Theme& theme, const QString& name, const FileURL& folder);

    OpenFolder openFolder_;
};

} // namespace ombrel

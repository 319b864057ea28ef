#pragma once

#include "operations/OperationReport.h"

#include <QDialog>

namespace ombrel {

class Theme;

/// What a command that is no job came to, when it did not wholly succeed: the same list as in the progress
/// window. Deletes itself.
class ReportDialog final : public QDialog {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    ReportDialog(const Theme& theme, const OperationReport& report, QWidget* parent);
};

} // namespace ombrel

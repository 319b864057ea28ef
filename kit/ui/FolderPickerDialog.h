#pragma once

#include "services/FolderPicker.h"

#include <functional>

class QWidget;

namespace ombrel {

/// The desktop's file dialog, asking for one folder.
class FolderPickerDialog final : public FolderPicker {
public:
    /// `window` answers with the window that a dialog belongs to, or with nullptr.
    explicit FolderPickerDialog(std::function<QWidget*()> window) : window_(std::move(window)) {}

    void pickFolder(const Request& request, std::function<void(std::optional<FileURL>)> done) override;
    /// Shown only while there is a window.
    void showFailure(const std::string& message) override;

private:
    std::function<QWidget*()> window_;
};

} // namespace ombrel

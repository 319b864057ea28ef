#pragma once

#include "services/Pasteboard.h"

namespace ombrel {

/// The clipboard of the desktop, through Qt.
class SystemPasteboard final : public Pasteboard {
    Q_OBJECT

public:
    explicit SystemPasteboard(QObject* parent = nullptr);

    void write(std::vector<Entry> entries) override;
    [[nodiscard]] bool has(std::string_view format) const override;
    [[nodiscard]] std::optional<std::string> read(std::string_view format) const override;
};

} // namespace ombrel

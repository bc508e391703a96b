#pragma once

#include "quillon/system/platform.h"

namespace quillon {

/// Opens documents, pages and mail links with the desktop's own programs, and is in force while it lives.
class QtOpener : public DesktopOpener {
public:
    QtOpener() : m_before(setDesktopOpener(this)) {}
    ~QtOpener() override { setDesktopOpener(m_before); }
    QtOpener(const QtOpener &) = delete;
    QtOpener &operator=(const QtOpener &) = delete;

    bool open(const QString &pathOrUrl) override;

private:
    DesktopOpener *m_before;
};

/// A path as a file's URL, and a text with a scheme of the web or of mail as it stands.
[[nodiscard]] QString openableUrl(const QString &pathOrUrl);

} // namespace quillon

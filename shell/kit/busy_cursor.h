#pragma once

#include <QApplication>
#include <QCursor>

namespace kit {

// The hourglass while a long run (a deletion of many rows, an import)
// blocks the window; back to the arrow when the scope ends, however it ends.
class BusyCursor {
public:
    BusyCursor() { QApplication::setOverrideCursor(QCursor(Qt::WaitCursor)); }
    ~BusyCursor() { QApplication::restoreOverrideCursor(); }
    BusyCursor(const BusyCursor&) = delete;
    BusyCursor& operator=(const BusyCursor&) = delete;
};

}  // namespace kit

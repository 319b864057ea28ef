#pragma once

#include <qnamespace.h>

class QDrag;

namespace ombrel::DragRun {

/// Drags until the button is let go, and answers with what the target did, as QDrag::exec() does: nothing
/// when the drag was called off. That is done by Escape, and by pressing another button, whose release would
/// drop otherwise. Main thread only.
Qt::DropAction toTheEnd(QDrag& drag, Qt::DropActions offered, Qt::DropAction usual);

} // namespace ombrel::DragRun

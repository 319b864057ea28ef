#pragma once

#include "ui/FileClass.h"

#include <QRectF>

class QPainter;

namespace ombrel {

class Theme;

/// The shapes of the file icons: a folder, or a sheet with an emblem for its class.
namespace FileIconDrawing {

void draw(QPainter& painter, const Theme& theme, FileClass fileClass, const QRectF& box);

} // namespace FileIconDrawing
} // namespace ombrel

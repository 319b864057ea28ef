#pragma once

#include "cli/JSONObject.h"
#include "listing/FileItem.h"

namespace ombrel::cli {

/// Adds what is known of an item: `name kind target size modified type hidden device inode error`.
void describe(JSONObject& object, FileItemView item);

} // namespace ombrel::cli

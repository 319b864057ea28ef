#include "operations/ArchiveFacts.h"

#include "operations/ArchiveTool.h"

#include <utility>

namespace ombrel {
namespace {

Text detailOf(const ArchiveFacts& facts, const std::string& words, std::int64_t status) {
    if (!facts.fault) {
        if (words.empty()) return {"archive.detail.status", {facts.tool, std::to_string(status)}};
        return {"error.fact.toolWords", {facts.tool, words}};
    }
    switch (*facts.fault) {
    case ArchiveFault::encrypted: return {"archive.detail.encrypted"};
    case ArchiveFault::damaged: return {"archive.detail.damaged"};
    case ArchiveFault::unsafe: return {"archive.detail.unsafe"};
    case ArchiveFault::unsupported: return {"archive.detail.unsupported"};
    case ArchiveFault::missingTool:
        return {"archive.detail.missingTool", {facts.tool, std::string(ArchiveTool::packageOf(facts.tool))}};
    }
    std::unreachable();
}

} // namespace

Text textOf(const ArchiveFacts& facts, const std::string& words, std::int64_t status) {
    const std::string detail = detailOf(facts, words, status).localized();
    if (facts.kind == FileOperationKind::compress) return {"archive.failed.compress", {detail}};
    return {"archive.failed.extract", {detail}};
}

} // namespace ombrel

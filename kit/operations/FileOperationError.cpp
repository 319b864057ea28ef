#include "operations/FileOperationError.h"

#include "base/FileName.h"

#include <cerrno>
#include <utility>

namespace ombrel {
namespace {

std::string_view keyOf(InvalidNameReason reason) {
    switch (reason) {
    case InvalidNameReason::empty: return "error.op.invalidName.empty";
    case InvalidNameReason::reserved: return "error.op.invalidName.reserved";
    case InvalidNameReason::containsSlash: return "error.op.invalidName.containsSlash";
    case InvalidNameReason::containsNull: return "error.op.invalidName.containsNull";
    case InvalidNameReason::tooLong: return "error.op.invalidName.tooLong";
    case InvalidNameReason::windowsCharacters: return "error.op.invalidName.windowsCharacters";
    }
    std::unreachable();
}

} // namespace

FileOperationError FileOperationError::invalidName(InvalidNameReason reason) {
    FileOperationError error(Case::invalidName);
    error.reason_ = reason;
    return error;
}

FileOperationError FileOperationError::partialCopyLeftBehind(std::string name) {
    FileOperationError error(Case::partialCopyLeftBehind);
    error.name_ = std::move(name);
    return error;
}

FileOperationError FileOperationError::sourceRemovalFailed(std::optional<std::int32_t> errorNumber) {
    FileOperationError error(Case::sourceRemovalFailed);
    error.errorNumber_ = errorNumber;
    return error;
}

FileOperationError FileOperationError::posix(std::int32_t errorNumber) {
    FileOperationError error(Case::posix);
    error.errorNumber_ = errorNumber;
    return error;
}

FileOperationError FileOperationError::system(std::string domain, std::int64_t code) {
    FileOperationError error(Case::system);
    error.name_ = std::move(domain);
    error.code_ = code;
    return error;
}

FileOperationError FileOperationError::from(int errorNumber) {
    switch (errorNumber) {
    case EPERM:
    case EACCES: return Case::permissionDenied;
    case ENOENT: return Case::sourceMissing;
    case EEXIST:
    case ENOTEMPTY: return Case::destinationExists;
    case ENOSPC:
    case EDQUOT: return Case::noSpace;
    case EROFS: return Case::readOnlyVolume;
    case ENAMETOOLONG: return invalidName(InvalidNameReason::tooLong);
    case ECANCELED: return Case::cancelled;
    default: return posix(errorNumber);
    }
}

Text FileOperationError::text() const {
    switch (case_) {
    case Case::invalidName: return {keyOf(*reason_)};
    case Case::partialCopyLeftBehind:
        return {"error.op.partialCopyLeftBehind", {FileName::displayText(name_)}};
    case Case::sourceRemovalFailed: return {"error.op.sourceRemovalFailed"};
    case Case::posix:
        return {"error.op.posix", {POSIXFailure{*errorNumber_}.systemText(), std::to_string(*errorNumber_)}};
    case Case::system: return {"error.op.system", {name_, std::to_string(code_)}};
    case Case::sourceMissing: return {"error.op.sourceMissing"};
    case Case::sourceChanged: return {"error.op.sourceChanged"};
    case Case::destinationExists: return {"error.op.destinationExists"};
    case Case::destinationMissing: return {"error.op.destinationMissing"};
    case Case::destinationInsideSource: return {"error.op.destinationInsideSource"};
    case Case::sameLocation: return {"error.op.sameLocation"};
    case Case::permissionDenied: return {"error.op.permissionDenied"};
    case Case::readOnlyVolume: return {"error.op.readOnlyVolume"};
    case Case::noSpace: return {"error.op.noSpace"};
    case Case::trashUnavailable: return {"error.op.trashUnavailable"};
    case Case::verificationFailed: return {"error.op.verificationFailed"};
    case Case::metadataNotPreserved: return {"error.op.metadataNotPreserved"};
    case Case::cancelled: return {"error.op.cancelled"};
    }
    std::unreachable();
}

std::size_t FileOperationError::hashValue() const {
    return hashOf(case_, reason_, errorNumber_, code_, name_);
}

} // namespace ombrel

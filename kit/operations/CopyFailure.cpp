#include "operations/CopyFailure.h"

#include <cerrno>

namespace ombrel {
namespace {

using Error = FileOperationError;
using Reach = CopyFailure::Reach;

/// The process, not the file, has come to its end.
bool isExhaustion(int number) noexcept {
    return number == EMFILE || number == ENFILE || number == ENOMEM || number == EOVERFLOW;
}

} // namespace

CopyFailure CopyFailure::ofSource(POSIXFailure failure) {
    const int number = failure.number;
    if (number == ELOOP || number == ENOTDIR || number == EISDIR) return {Error::Case::sourceChanged};
    // A tree whose upper part was moved while it was walked.
    if (number == ESTALE) return {Error::posix(number), Reach::item};
    return {Error::from(failure), isExhaustion(number) ? Reach::item : Reach::entry};
}

CopyFailure CopyFailure::ofCopy(POSIXFailure failure) {
    const int number = failure.number;
    if (number == ENOENT || number == ENOTDIR || number == ELOOP)
        return {Error::Case::destinationMissing, Reach::item};
    return {Error::from(failure), number == EFBIG ? Reach::entry : Reach::item};
}

CopyFailure CopyFailure::ofCopyName(POSIXFailure failure) {
    switch (failure.number) {
    case EILSEQ:
    case EINVAL: return {Error::invalidName(InvalidNameReason::windowsCharacters)};
    case EEXIST:
    case ENAMETOOLONG: return {Error::from(failure)};
    default: return ofCopy(failure);
    }
}

CopyFailure CopyFailure::ofMetadata(POSIXFailure failure) {
    switch (failure.number) {
    case EIO:
    case EROFS:
    case EDQUOT:
    case ESTALE: return {Error::from(failure), Reach::item};
    default: return {Error::Case::metadataNotPreserved};
    }
}

} // namespace ombrel

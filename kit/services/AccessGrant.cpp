#include "services/AccessGrant.h"

#include "base/FileName.h"
#include "base/Text.h"
#include "services/SecurityScopeSystem.h"

#include <utility>

namespace ombrel {

AccessGrant::AccessGrant(const QUuid& id, std::string displayName)
    : id_(id), displayName_(std::move(displayName)) {}

std::string AccessGrant::State::message() const {
    return messageKey.empty() ? std::string() : Texts::localized(messageKey);
}

std::string AccessGrant::displayName(const FileURL& url) {
    return FileName::displayText(url.title());
}

void AccessGrant::activate(const FileURL& url, ScopeOwner owner, bool isAccessing) {
    url_ = url;
    scopeOwner_ = owner;
    isAccessing_ = isAccessing;
    state_ = {State::Case::active};
    displayName_ = displayName(url);
}

void AccessGrant::stop(SecurityScopeSystem& system) {
    if (!isAccessing_) return;
    if (url_) system.stopAccessing(*url_);
    isAccessing_ = false;
    scopeOwner_ = ScopeOwner::none;
}

} // namespace ombrel

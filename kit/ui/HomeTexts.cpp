#include "ui/HomeTexts.h"

#include "ui/Formats.h"
#include "ui/LocalizedText.h"

#include <QStringList>

#include <utility>

namespace ombrel::HomeTexts {

using Section = HomeModel::Section;

QString sectionTitle(Section section) {
    switch (section) {
    case Section::quickAccess: return localized("ui.home.quickAccess");
    case Section::locations: return localized("ui.home.locations");
    case Section::volumes: return localized("ui.home.volumes");
    }
    std::unreachable();
}

QString count(Section section, std::size_t count) {
    return localized(section == Section::volumes ? "ui.home.volumeCount" : "ui.home.folderCount",
                     static_cast<std::int64_t>(count));
}

QString state(const GrantedPlace& location) {
    switch (location.state) {
    case AccessGrant::State::Case::active: return localized("ui.location.available");
    case AccessGrant::State::Case::needsReauthorization: return localized("ui.location.needsPermission");
    case AccessGrant::State::Case::unavailable: return localized("ui.location.unavailable");
    }
    std::unreachable();
}

QString capacity(const VolumePlace& volume) {
    if (!volume.used()) return localized("ui.volume.sizeUnknown");
    return localized("ui.volume.free", {Formats::size(*volume.available).toStdString(),
                                        Formats::size(*volume.total).toStdString()});
}

QString spoken(const HomeModel& model, const HomeItem& item) {
    switch (item.part) {
    case HomeItem::Part::head:
        return sectionTitle(item.section) + QStringLiteral(", ") +
               count(item.section, model.count(item.section));
    case HomeItem::Part::addLocation: return localized("ui.home.addLocation");
    case HomeItem::Part::entry: break;
    }
    if (item.index >= model.count(item.section)) return {};
    QStringList facts;
    switch (item.section) {
    case Section::quickAccess: {
        const PinnedPlace& pin = model.pins()[item.index];
        facts << pin.title << pin.whereabouts;
        break;
    }
    case Section::locations: {
        const GrantedPlace& location = model.locations()[item.index];
        facts << location.title << location.path << state(location);
        break;
    }
    case Section::volumes: {
        const VolumePlace& volume = model.volumes()[item.index];
        facts << volume.title << volume.nature << capacity(volume);
        if (volume.isEjecting) facts << localized("ui.volume.ejecting");
        break;
    }
    }
    facts.removeAll(QString());
    return facts.join(QStringLiteral(", "));
}

} // namespace ombrel::HomeTexts

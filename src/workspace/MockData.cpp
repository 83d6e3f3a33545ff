#include "workspace/MockData.h"

using namespace Qt::StringLiterals;

QList<ManagedApp> MockData::apps() {
    auto app = [](QString id, QString name, QString bundle, QString sku) {
        ManagedApp a;
        a.id = std::move(id);
        a.name = std::move(name);
        a.bundleID = std::move(bundle);
        a.sku = std::move(sku);
        a.primaryLocale = u"en-US"_s;
        return a;
    };
    return {
        app(u"demo-aurora-journal"_s, u"Aurora Journal"_s, u"com.example.aurorajournal"_s,
            u"AURORAJOURNAL"_s),
        app(u"demo-fjord-weather"_s, u"Fjord Weather"_s, u"com.example.fjordweather"_s, u"FJORDWEATHER"_s),
        app(u"demo-runestone-notes"_s, u"Runestone Notes"_s, u"com.example.runestonenotes"_s,
            u"RUNESTONENOTES"_s),
        app(u"demo-varnis-budget"_s, u"Varnis Budget"_s, u"com.example.varnisbudget"_s, u"VARNISBUDGET"_s),
    };
}

#include "workspace/AppsEndpoints.h"

using namespace Qt::StringLiterals;

namespace AppsEndpoints {

Endpoint<Returns::AllPages<ASCAppAttributes>> apps(int pageLimit, int maxPages) {
    return Endpoint<Returns::AllPages<ASCAppAttributes>>::get(
        u"/v1/apps"_s, {{u"limit"_s, QString::number(pageLimit)}, {u"sort"_s, u"name"_s}}, maxPages);
}

} // namespace AppsEndpoints

#include "dayclose/cierre/fecha_trabajo.h"

#include <utility>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace quimo::dayclose {
namespace {

TEST(FechaTrabajo, SigueLaTablaAlPieDeLaLetra) {
    const std::pair<const char16_t*, const char16_t*> casos[] = {
        {u"14112026", u"15112026"}, {u"27022025", u"28022025"}, {u"28022025", u"29022025"},
        {u"29022025", u"01032025"}, {u"28022024", u"29022024"}, {u"29022024", u"01032024"},
        {u"28042026", u"29042026"}, {u"29042026", u"30042026"}, {u"30042026", u"01052026"},
        {u"30062026", u"01072026"}, {u"30092026", u"01102026"}, {u"30112026", u"01122026"},
        {u"30012026", u"31012026"}, {u"31012026", u"01022026"}, {u"30122025", u"31122025"},
        {u"31122025", u"01132026"}, {u"01132026", u"02132026"}, {u"30022026", u"31022026"},
        {u"31042026", u"01052026"}, {u"09092026", u"10092026"},
    };
    for (const auto& [hoy, manana] : casos) {
        EXPECT_EQ(SiguienteFechaTrabajo(QString::fromUtf16(hoy)), QString::fromUtf16(manana));
    }
}

}  // namespace
}  // namespace quimo::dayclose

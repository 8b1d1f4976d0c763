// SPDX-License-Identifier: Apache-2.0
#include "utils/CActionUtils.h"

const QStringList gCommandsList = {
    QStringLiteral("splitiftextispresent"),
    QStringLiteral("splitiftextcontainedinbox"),
    QStringLiteral("splitiftextisinarun"),
    QStringLiteral("splitontextchange"),
    QStringLiteral("splitontextchangeafterstring"),
    QStringLiteral("splitontextchangeafterstringonly"),
    QStringLiteral("splitifthistextrepeats"),
    QStringLiteral("skipheader"),
    QStringLiteral("providebasefilename"),
    QStringLiteral("providefilename"),
    QStringLiteral("providefilenameifstringinbox"),
    QStringLiteral("providefilenamefromfirstword"),
    QStringLiteral("providefilenamefromselectedword"),
    QStringLiteral("providefilenamefromrangeofcharacters"),
    QStringLiteral("providefilenameafterstring"),
    QStringLiteral("providefilenameafterstringinbox"),
    QStringLiteral("addtofilename"),
    QStringLiteral("addtofilenametextinbox"),
    QStringLiteral("addtofilenameifstringinbox"),
    QStringLiteral("addtofilenameafterstringinbox"),
    QStringLiteral("deletecharactersfromfilename"),
    QStringLiteral("filterfilename"),
    QStringLiteral("getfilenamesfromlistinfile"),
    QStringLiteral("includeall"),
    QStringLiteral("includeiftextispresent"),
    QStringLiteral("includeinasinglefragmentiftextispresent"),
    QStringLiteral("includeiftextcontainedinbox"),
    QStringLiteral("includeiftextchangeafterstring"),
    QStringLiteral("excludeiftextispresent"),
    QStringLiteral("excludeiftextcontainedinbox"),
    QStringLiteral("excludeiftextchangeafterstring"),
    QStringLiteral("excludeifnotextcontainted"),  // stored in this spelling by the host
    QStringLiteral("extractfilename"),
    QStringLiteral("extracttext"),
    QStringLiteral("extracttextselectedwords"),
    QStringLiteral("extracttextskipwords"),
    QStringLiteral("extracttextskipthisword"),
    QStringLiteral("extracttextskipcharacters"),
    QStringLiteral("extractonlyifthistextinrect"),
    QStringLiteral("extractonlyifthistextnotinrect"),
    QStringLiteral("extracttextlineafterstring"),
    QStringLiteral("extracttextlineafterstringinrect"),
    QStringLiteral("fillinfodictentry"),
};

int CActionUtils::SplitComGetCommandIndex(QString command) {
  return gCommandsList.indexOf(command.toLower());
}

QString CActionUtils::SplitComGetCommandString(int number) {
  return gCommandsList.value(number, QStringLiteral("INVALID_INDEX"));
}

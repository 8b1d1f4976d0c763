// SPDX-License-Identifier: Apache-2.0
#include "utils/CActionUtils.h"
#include "utils/EarlyStatic.h"

VORLANE_EARLY_STATIC QStringList gCommandsList = {
    "splitiftextispresent",
    "splitiftextcontainedinbox",
    "splitiftextisinarun",
    "splitontextchange",
    "splitontextchangeafterstring",
    "splitontextchangeafterstringonly",
    "splitifthistextrepeats",
    "skipheader",
    "providebasefilename",
    "providefilename",
    "providefilenameifstringinbox",
    "providefilenamefromfirstword",
    "providefilenamefromselectedword",
    "providefilenamefromrangeofcharacters",
    "providefilenameafterstring",
    "providefilenameafterstringinbox",
    "addtofilename",
    "addtofilenametextinbox",
    "addtofilenameifstringinbox",
    "addtofilenameafterstringinbox",
    "deletecharactersfromfilename",
    "filterfilename",
    "getfilenamesfromlistinfile",
    "includeall",
    "includeiftextispresent",
    "includeinasinglefragmentiftextispresent",
    "includeiftextcontainedinbox",
    "includeiftextchangeafterstring",
    "excludeiftextispresent",
    "excludeiftextcontainedinbox",
    "excludeiftextchangeafterstring",
    "excludeifnotextcontainted",  // stored in this spelling by the host
    "extractfilename",
    "extracttext",
    "extracttextselectedwords",
    "extracttextskipwords",
    "extracttextskipthisword",
    "extracttextskipcharacters",
    "extractonlyifthistextinrect",
    "extractonlyifthistextnotinrect",
    "extracttextlineafterstring",
    "extracttextlineafterstringinrect",
    "fillinfodictentry",
};

int CActionUtils::SplitComGetCommandIndex(QString command) {
  return gCommandsList.indexOf(command.toLower());
}

QString CActionUtils::SplitComGetCommandString(int number) {
  return gCommandsList.value(number, "INVALID_INDEX");
}

#include "filter/input/charset.h"

#include "filter/data/ascii.h"
#include "filter/data/name_lookup.h"
#include "filter/ground/callbacks.h"

uint32_t MapCSToSO(uint16_t charset) {
  if (charset & CHARSETF_UNICODE) return HOST_CS_UNICODE;
  if (charset >= CHARSET_ISO8859_1 && charset <= CHARSET_ISO8859_9) {
    return HOST_CS_ISO8859_1 + (charset - CHARSET_ISO8859_1);
  }
  if (charset >= CHARSET_WINDOWS_1254 && charset <= CHARSET_WINDOWS_1257) {
    return HOST_CS_WINDOWS_1254 + (uint32_t{charset} - CHARSET_WINDOWS_1254) * 0x10000u;
  }
  switch (charset) {
    case CHARSET_EUC_JP:
    case CHARSET_SJIS:
    case CHARSET_JIS_X0208:
      return HOST_CS_SHIFT_JIS;
    case CHARSET_BIG5:
      return HOST_CS_BIG5;
    case CHARSET_GB2312:
      return HOST_CS_GB2312;
    case CHARSET_KSC5601:
      return HOST_CS_KSC5601;
    case CHARSET_ISO2022_KR:
    case CHARSET_ISO2022_KR_ESC:
      return HOST_CS_ISO2022_KR;
    case CHARSET_ISO2022_JP:
      return HOST_CS_ISO2022_JP;
    case CHARSET_WINDOWS_1250:
      return HOST_CS_WINDOWS_1250;
    case CHARSET_WINDOWS_1251:
      return HOST_CS_WINDOWS_1251;
    case CHARSET_KOI8_R:
      return HOST_CS_KOI8_R;
    case CHARSET_WINDOWS_1253:
      return HOST_CS_WINDOWS_1253;
    case CHARSET_MAC_ROMAN:
      return HOST_CS_MAC_ROMAN;
    case CHARSET_MAC_TURKISH:
      return HOST_CS_MAC_TURKISH;
    case CHARSET_MAC_GREEK:
      return HOST_CS_MAC_GREEK;
    case CHARSET_MAC_CE:
      return HOST_CS_MAC_CE;
    // Sets of the Macintosh without a name that a document could give.
    case 0x801F:
      return 0x80050100;
    case 0x8022:
      return 0x80080100;
    case 0x8023:
      return 0x80090100;
    case 0x8024:
      return 0x800A0100;
    default:
      return HOST_CS_UNICODE;
  }
}

uint16_t QueryCharsetTable(const char *name) {
  const NameRecord *record = FindName(name, WmlInit.charsetNames, ncstrcmp);
  return record != nullptr ? static_cast<uint16_t>(record->value) : CHARSET_UTF8;
}

void SwitchCharset(uint16_t charset, WmlProc *proc) {
  proc->save.curCharset = charset;
  SOSwitchCharset(MapCSToSO(charset), proc);
}

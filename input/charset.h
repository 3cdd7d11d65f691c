// Charset ids: their host codes and their names.
#ifndef VS_WML_INPUT_CHARSET_H
#define VS_WML_INPUT_CHARSET_H

#include <cstdint>

struct WmlProc;

// The HOST_CS_ code of a charset id, HOST_CS_UNICODE for every id that has none.
uint32_t MapCSToSO(uint16_t charset);

// The charset id of a name, compared whole and ignoring case; CHARSET_UTF8 when it
// is not known.
uint16_t QueryCharsetTable(const char *name);

// True for a byte that starts a two-byte code of a multi-byte charset that is
// passed on as it is (Shift-JIS, Big5, GB 2312, KS C 5601).
bool IsLeadByte(uint16_t charset, unsigned byte);

// Decodes with that charset from now on and tells the host.
void SwitchCharset(uint16_t charset, WmlProc *proc);

#endif  // VS_WML_INPUT_CHARSET_H

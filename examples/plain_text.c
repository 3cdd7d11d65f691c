/* A complete host in C: prints a WML document as plain text in UTF-8.
 *
 * The filter hands UTF-8 text over byte by byte and does not combine it. So this host
 * serves a UTF-8 document with a character reference in place of every character outside
 * ASCII. A document in another character set is served as it is, and of its characters
 * only ASCII is shown; a host that wants them all looks at what SOSwitchCharset says.
 *
 * SPDX-License-Identifier: MIT
 */
#include <ctype.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <vs_wml.h>

enum { PLAIN_WML = 1151, MAX_BYTES = 1 << 26, MAX_STRINGS = 1 << 16 };

typedef struct Document {
  VwBlockHandle handle; /* first: the filter hands back its address */
  unsigned char *bytes;
  uint32_t size, position;
} Document;

typedef struct Host {
  uint32_t charset;           /* of the characters that come next */
  uint32_t high_surrogate;    /* 0, or waits for its other half */
  char reference[9];          /* "&#x3042;" as far as it has come */
  size_t reference_length;    /* 0 outside of one */
  char *strings[MAX_STRINGS]; /* by string index */
  uint32_t string_count;
  uint32_t target;      /* string index of the latest reference's target */
  uint32_t link_target; /* of the open link's */
  int ended;
} Host;

/* ------------------------------------------------------------------ input */

static uint32_t doc_read(VwHandle self, void *buffer, uint32_t wanted, uint32_t *delivered) {
  Document *doc = (Document *)self;
  uint32_t left = doc->position < doc->size ? doc->size - doc->position : 0;
  *delivered = wanted < left ? wanted : left;
  if (*delivered != 0) memcpy(buffer, doc->bytes + doc->position, *delivered);
  doc->position += *delivered;
  return 0;
}

static uint32_t doc_seek(VwHandle self, uint32_t origin, uint32_t offset) {
  Document *doc = (Document *)self;
  doc->position = origin == 2 ? doc->size + offset : offset;
  return 0;
}

static uint32_t doc_tell(VwHandle self, uint32_t *position) {
  *position = ((Document *)self)->position;
  return 0;
}

/* Length of the well-formed UTF-8 sequence at `s`, 0 for none; its value in `*code`. */
static size_t utf8_sequence(const unsigned char *s, const unsigned char *end, uint32_t *code) {
  static const uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
  size_t n = *s < 0x80 ? 1 : *s < 0xC2 ? 0 : *s < 0xE0 ? 2 : *s < 0xF0 ? 3 : *s < 0xF5 ? 4 : 0;
  if (n == 0 || (size_t)(end - s) < n) return 0;
  *code = n == 1 ? *s : *s & (0x7Fu >> n);
  for (size_t i = 1; i < n; i++) {
    if ((s[i] & 0xC0) != 0x80) return 0;
    *code = *code << 6 | (s[i] & 0x3Fu);
  }
  return *code < least[n] || *code > 0x10FFFF || *code >> 11 == 0x1B ? 0 : n;
}

/* Replaces what is not ASCII by references to UTF-16 units, if the document is UTF-8. */
static void serve_as_references(Document *doc) {
  char *out = malloc((size_t)doc->size * 4 + 1), *to = out;
  const unsigned char *end = doc->bytes + doc->size;
  uint32_t code;
  if (out == NULL) return;
  if (doc->size >= 3 && memcmp(doc->bytes, "\xEF\xBB\xBF", 3) == 0) memset(doc->bytes, ' ', 3);
  for (const unsigned char *s = doc->bytes; s < end;) {
    size_t length = utf8_sequence(s, end, &code);
    if (length == 0) {
      free(out);
      return;
    }
    if (length == 4) to += sprintf(to, "&#x%04X;", 0xD7C0 + (unsigned)(code >> 10));
    if (length == 4) code = 0xDC00 | (code & 0x3FF);
    to += length == 1 ? (*to = (char)code, 1) : sprintf(to, "&#x%04X;", (unsigned)code);
    s += length;
  }
  free(doc->bytes);
  doc->bytes = (unsigned char *)out;
  doc->size = (uint32_t)(to - out);
}

/* ----------------------------------------------------------------- output */

/* Prints a UTF-16 unit as UTF-8. */
static void put_unit(Host *host, uint32_t unit) {
  uint32_t high = host->high_surrogate;
  host->high_surrogate = 0;
  if (unit >> 10 == 0x36) {
    host->high_surrogate = unit;
    return;
  }
  if (unit >> 10 == 0x37) unit = high ? 0x10000 + ((high & 0x3FF) << 10 | (unit & 0x3FF)) : 0xFFFD;
  if (unit < 0x80) {
    putchar((int)unit);
    return;
  }
  int more = unit < 0x800 ? 1 : unit < 0x10000 ? 2 : 3;
  putchar((int)((0xFF00u >> (more + 1) & 0xFF) | unit >> 6 * more));
  while (more-- > 0) putchar((int)(0x80 | (unit >> 6 * more & 0x3F)));
}

/* ------------------------------------------------------- output routines */

static void flush_reference(Host *host) {
  for (size_t i = 0; i < host->reference_length; i++)
    put_unit(host, (unsigned char)host->reference[i]);
  host->reference_length = 0;
}

/* In a title, which holds bytes, a reference above 255 comes as it was served. */
static uint32_t emit_char(uint32_t code, VwUserWord user1, VwUserWord user2) {
  Host *host = (Host *)user1;
  const char shape[] = "&#xHHHH;", expected = shape[host->reference_length];
  (void)user2;
  if (expected == 'H' ? code > 0x7F || !isxdigit((int)code) : code != (unsigned char)expected)
    flush_reference(host);
  if (code == '&' || host->reference_length != 0) {
    host->reference[host->reference_length++] = (char)code;
    if (code != ';') return 0;
    host->reference_length = 0;
    code = (uint32_t)strtoul(host->reference + 3, NULL, 16);
  }
  put_unit(host, host->charset == HOST_CS_UNICODE || code < 0x80 ? code : 0xFFFD);
  return 0;
}

static void print(Host *host, const char *text) {
  while (*text != '\0') emit_char((unsigned char)*text++, (VwUserWord)host, 0);
  flush_reference(host);
}

static uint32_t emit_control(uint32_t code, VwUserWord user1, VwUserWord user2) {
  (void)user2;
  print((Host *)user1, code == SO_CONTROL_CARD ? "\n--------\n" : "\t");
  return 0;
}

static uint32_t emit_break(uint32_t kind, uint32_t zero, VwUserWord user1, VwUserWord user2) {
  Host *host = (Host *)user1;
  (void)zero, (void)user2;
  flush_reference(host);
  print(host, kind == SO_BREAK_CELL ? "\t" : "\n");
  host->ended = kind == SO_BREAK_DOCUMENT;
  return 0; /* go on */
}

static uint32_t switch_charset(uint32_t charset, VwUserWord user1, VwUserWord user2) {
  (void)user2;
  ((Host *)user1)->charset = charset;
  return 0;
}

static uint32_t store_string(const uint16_t *string, uint32_t code, uint32_t length,
                             uint32_t *index, VwUserWord user1, VwUserWord user2) {
  Host *host = (Host *)user1;
  char *copy = host->string_count < MAX_STRINGS ? malloc(length + 1) : NULL;
  (void)code, (void)user2;
  if (copy == NULL) return 0; /* the index stays "not kept" */
  for (uint32_t i = 0; i <= length; i++) copy[i] = (char)string[i];
  *index = host->string_count;
  host->strings[host->string_count++] = copy;
  return 0;
}

static uint32_t set_property(uint32_t code, uint32_t a, uint32_t b, uint32_t c, VwUserWord user1,
                             VwUserWord user2) {
  (void)a, (void)c, (void)user2;
  if (code == PROP_REFERENCE_TARGET) ((Host *)user1)->target = b;
  return 0;
}

static void print_string(Host *host, uint32_t index) {
  if (index < host->string_count) print(host, host->strings[index]);
}

static uint32_t open_link(uint32_t code, uint32_t number, const VwLinkRecord *link,
                          VwUserWord user1, VwUserWord user2) {
  Host *host = (Host *)user1;
  (void)code, (void)number, (void)link, (void)user2;
  host->link_target = host->target; /* the reference definition came just before */
  return 0;
}

static uint32_t close_link(uint32_t code, uint32_t number, VwUserWord user1, VwUserWord user2) {
  Host *host = (Host *)user1;
  (void)code, (void)number, (void)user2;
  print(host, " <");
  print_string(host, host->link_target);
  print(host, ">");
  return 0;
}

static uint32_t insert_graphic(const GraphicRecord *graphic, VwUserWord user1, VwUserWord user2) {
  Host *host = (Host *)user1;
  (void)user2;
  print(host, "[");
  print_string(host, graphic->flags & SO_GRAPHIC_HAS_ALT ? graphic->alternative : host->target);
  print(host, "]");
  return 0;
}

/* ------------------------------------------------------------------ main */

static int load(Document *doc, const char *name) {
  FILE *file = strcmp(name, "-") == 0 ? stdin : fopen(name, "rb");
  doc->bytes = file != NULL ? malloc(MAX_BYTES) : NULL;
  if (doc->bytes == NULL) return 0;
  doc->size = (uint32_t)fread(doc->bytes, 1, MAX_BYTES, file);
  int good = !ferror(file) && fgetc(file) == EOF;
  if (file != stdin) fclose(file);
  return good;
}

static int read_document(Document *doc, Host *host) {
  WmlProc *instance = VwAllocProc();
  VwHandle chr = 0, block;
  VwFileInfo info;
  if (instance == NULL) return 0;
  VwLocalUp((VwHandle)doc, &chr, instance);
  VwSetSoRtn(SLOT_EMIT_CHAR, (VwRoutine)emit_char, instance);
  VwSetSoRtn(SLOT_EMIT_CONTROL_CODE, (VwRoutine)emit_control, instance);
  VwSetSoRtn(SLOT_EMIT_BREAK, (VwRoutine)emit_break, instance);
  VwSetSoRtn(SLOT_SWITCH_CHARSET, (VwRoutine)switch_charset, instance);
  VwSetSoRtn(SLOT_STORE_STRING, (VwRoutine)store_string, instance);
  VwSetSoRtn(SLOT_SET_PROPERTY, (VwRoutine)set_property, instance);
  VwSetSoRtn(SLOT_OPEN_LINK, (VwRoutine)open_link, instance);
  VwSetSoRtn(SLOT_CLOSE_LINK, (VwRoutine)close_link, instance);
  VwSetSoRtn(SLOT_INSERT_GRAPHIC, (VwRoutine)insert_graphic, instance);
  VwSetUser((VwUserWord)host, 0, instance);
  VwStreamOpen(chr, PLAIN_WML, 0, &info, instance);
  VwStreamSection(chr, instance);
  VwStreamRead(chr, instance);
  VwStreamClose(chr, instance);
  VwLocalDown(chr, &block);
  VwFreeProc(instance);
  return host->ended;
}

int main(int argc, char **argv) {
  static Host host; /* too large for a stack */
  Document doc = {{NULL, doc_read, NULL, doc_seek, doc_tell}, NULL, 0, 0};
  if (argc != 2 || !load(&doc, argv[1])) {
    fprintf(stderr, argc != 2 ? "usage: plain_text FILE\n" : "plain_text: cannot read %s\n",
            argv[1]);
    free(doc.bytes);
    return 2;
  }
  serve_as_references(&doc);
  int good = read_document(&doc, &host) && fflush(stdout) == 0;
  while (host.string_count > 0) free(host.strings[--host.string_count]);
  free(doc.bytes);
  return good ? 0 : 1;
}

/* A complete host in C: prints a WML document as plain text in UTF-8.
 *
 * The filter does not combine the bytes of UTF-8, so a UTF-8 document is opened with an
 * identity whose character set has one byte a character: its bytes come back one by one, to
 * be printed as they are. Other documents are opened as plain WML, which is ISO 8859-1.
 *
 * SPDX-License-Identifier: MIT
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <vs_wml.h>

enum { PLAIN_WML = 1151, ONE_BYTE_A_CHARACTER = 1157, MAX_BYTES = 1 << 26, MAX_STRINGS = 1 << 16 };

typedef struct Document {
  VwBlockHandle handle; /* first: the filter hands back its address */
  unsigned char *bytes;
  uint32_t size, position;
} Document;

typedef struct Host {
  uint32_t charset;           /* of the characters that come next */
  char *strings[MAX_STRINGS]; /* what SOStoreString was given, by index */
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

static int is_utf8(const unsigned char *s, size_t size) {
  for (size_t i = 0; i < size;) {
    unsigned char lead = s[i++];
    int more = lead < 0x80 ? 0 : lead < 0xC2 ? -1 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    if (more < 0 || lead > 0xF4) return 0;
    for (; more > 0; more--)
      if (i == size || (s[i++] & 0xC0) != 0x80) return 0;
  }
  return 1;
}

/* Hides what would change the character set: declarations, and ISO 2022's control bytes. */
static void keep_charset(Document *doc) {
  for (uint32_t i = 0; i < doc->size; i++) {
    unsigned char *s = doc->bytes + i;
    if (*s == 0x0E || *s == 0x0F || *s == 0x1B) *s = ' ';
    if (doc->size - i >= 5 && memcmp(s, "<meta", 5) == 0) s[1] = '-';
  }
  if (doc->size >= 3 && memcmp(doc->bytes, "\xEF\xBB\xBF", 3) == 0) memset(doc->bytes, ' ', 3);
}

/* ------------------------------------------------------- output routines */

static uint32_t emit_char(uint32_t code, VwUserWord user1, VwUserWord user2) {
  uint32_t charset = ((Host *)user1)->charset;
  (void)user2;
  if (charset == HOST_CS_WINDOWS_1251 || code < 0x80) {
    putchar((int)code); /* a byte of the document */
  } else if (charset != HOST_CS_UNICODE) {
    putchar('?'); /* another character set, which the document declares */
  } else if (code < 0x800) {
    printf("%c%c", (int)(0xC0 | code >> 6), (int)(0x80 | (code & 0x3F)));
  } else {
    printf("%c%c%c", (int)(0xE0 | code >> 12), (int)(0x80 | (code >> 6 & 0x3F)),
           (int)(0x80 | (code & 0x3F)));
  }
  return 0;
}

static uint32_t switch_charset(uint32_t charset, VwUserWord user1, VwUserWord user2) {
  (void)user2;
  ((Host *)user1)->charset = charset;
  return 0;
}

static uint32_t emit_control(uint32_t code, VwUserWord user1, VwUserWord user2) {
  (void)user1, (void)user2;
  fputs(code == SO_CONTROL_CARD ? "\n--------\n" : "\t", stdout);
  return 0;
}

static uint32_t emit_break(uint32_t kind, uint32_t zero, VwUserWord user1, VwUserWord user2) {
  (void)zero, (void)user2;
  putchar(kind == SO_BREAK_CELL ? '\t' : '\n');
  ((Host *)user1)->ended = kind == SO_BREAK_DOCUMENT;
  return 0; /* go on */
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

static void print(Host *host, const char *text) {
  while (*text != '\0') emit_char((unsigned char)*text++, (VwUserWord)host, 0);
}

static void print_string(Host *host, uint32_t index) {
  print(host, index < host->string_count ? host->strings[index] : "?");
}

static uint32_t set_property(uint32_t code, uint32_t a, uint32_t b, uint32_t c, VwUserWord user1,
                             VwUserWord user2) {
  (void)a, (void)c, (void)user2;
  if (code == PROP_REFERENCE_TARGET) ((Host *)user1)->target = b;
  return 0;
}

static uint32_t open_link(uint32_t code, uint32_t number, const VwLinkRecord *link,
                          VwUserWord user1, VwUserWord user2) {
  Host *host = (Host *)user1;
  (void)code, (void)number, (void)link, (void)user2;
  host->link_target = host->target; /* told just before */
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
  FILE *file = fopen(name, "rb");
  if (file == NULL || (doc->bytes = malloc(MAX_BYTES)) == NULL) return 0;
  doc->size = (uint32_t)fread(doc->bytes, 1, MAX_BYTES, file);
  int whole = !ferror(file) && fgetc(file) == EOF;
  fclose(file);
  return whole;
}

static int read_document(Document *doc, int16_t identity, Host *host) {
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
  VwStreamOpen(chr, identity, 0, &info, instance);
  VwStreamSection(chr, instance);
  VwStreamRead(chr, instance);
  VwStreamClose(chr, instance);
  VwLocalDown(chr, &block);
  VwFreeProc(instance);
  return host->ended;
}

int main(int argc, char **argv) {
  static Host host; /* large */
  Document doc = {{NULL, doc_read, NULL, doc_seek, doc_tell}, NULL, 0, 0};
  int good = 0;
  if (argc != 2) {
    fputs("usage: plain_text FILE\n", stderr);
    return 2;
  }
  if (!load(&doc, argv[1])) {
    fprintf(stderr, "plain_text: cannot read %s\n", argv[1]);
  } else {
    int utf8 = is_utf8(doc.bytes, doc.size);
    if (utf8) keep_charset(&doc);
    good = read_document(&doc, utf8 ? ONE_BYTE_A_CHARACTER : PLAIN_WML, &host);
  }
  while (host.string_count > 0) free(host.strings[--host.string_count]);
  free(doc.bytes);
  return good && fflush(stdout) == 0 ? 0 : 1;
}

/* A heap of which one allocation fails, for LD_PRELOAD: the one whose number is in
 * VS_WML_FAIL_AT, and with VS_WML_FAIL_ON all that come after it, too. With VS_WML_COUNT_TO the
 * number of allocations is written to that file at the end.
 *
 * SPDX-License-Identifier: MIT */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>

void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *block, size_t size);
void *__libc_memalign(size_t alignment, size_t size);

static atomic_ulong allocations;
static unsigned long fail_at;
static int fail_on;

__attribute__((constructor)) static void begin(void) {
  const char *at = getenv("VS_WML_FAIL_AT");
  fail_at = at == NULL ? 0 : strtoul(at, NULL, 10);
  fail_on = getenv("VS_WML_FAIL_ON") != NULL;
  atomic_store(&allocations, 0);
}

__attribute__((destructor)) static void end(void) {
  const char *name = getenv("VS_WML_COUNT_TO");
  const unsigned long count = atomic_load(&allocations);
  FILE *file = name == NULL ? NULL : fopen(name, "w");
  if (file != NULL) {
    fprintf(file, "%lu\n", count);
    fclose(file);
  }
}

static int fails(void) {
  const unsigned long number = atomic_fetch_add(&allocations, 1) + 1;
  if (fail_at == 0 || number < fail_at || (number > fail_at && !fail_on)) return 0;
  errno = ENOMEM;
  return 1;
}

void *malloc(size_t size) {
  return fails() ? NULL : __libc_malloc(size);
}
void *calloc(size_t count, size_t size) {
  return fails() ? NULL : __libc_calloc(count, size);
}
void *realloc(void *block, size_t size) {
  return fails() ? NULL : __libc_realloc(block, size);
}
void *memalign(size_t alignment, size_t size) {
  return fails() ? NULL : __libc_memalign(alignment, size);
}
void *aligned_alloc(size_t alignment, size_t size) {
  return memalign(alignment, size);
}
int posix_memalign(void **block, size_t alignment, size_t size) {
  *block = memalign(alignment, size);
  return *block == NULL ? ENOMEM : 0;
}

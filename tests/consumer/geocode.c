/* A C program that knows the library only through pkg-config: geocodes a
 * few addresses of the sample database (argument 1) with hk_mtci and checks
 * each result. Exits 0 when all are as expected. */
#include <stdio.h>
#include <string.h>

#include "orlo_codes.h"
#include "orlo_matcher.h"
#include "orlo_records.h"

static void put(char *rec, int off, int len, const char *text) {
  size_t n = strlen(text);
  memcpy(rec + off, text, n < (size_t)len ? n : (size_t)len);
}

int main(int argc, char **argv) {
  static const struct {
    const char *premno, *street, *region;
    char rc, status;
    const char *ref; /* refcode and refid as they stand in the record */
  } cases[] = {
      {"22", "CASTLE PEAK ROAD", "KLN", HKRC_REFERENCE, HKMS_ACCEPTED,
       "SSP12831"},
      {"42", "LOCKHART RD", "HK", HKRC_REFERENCE, HKMS_ACCEPTED, "WCH06312"},
      {"23", "WHITFIELD ROAD", "KLN", HKRC_OK, HKMS_NO_STREET, "        "},
  };
  char paths[3][512];
  const char *names[3] = {"LEVEL1", "LEVEL2", "BASEDATA"};
  HKHANDLE handle;
  char in[HKINREC_SIZE], out[HKOUTREC_SIZE];
  int failed = 0;
  if (argc != 2) return 2;
  for (int i = 0; i < 3; ++i)
    snprintf(paths[i], sizeof paths[i], "%s/%s", argv[1], names[i]);
  memset(&handle, 0, sizeof handle);
  memset(out, ' ', sizeof out);
  hk_mtci("O", &handle, NULL, out, NULL, NULL, NULL, NULL, NULL, NULL, NULL,
          NULL, NULL, paths[0], paths[1], paths[2], NULL, NULL);
  if (out[0] != HKRC_OK) {
    printf("open failed: return code %c\n", out[0]);
    return 1;
  }
  for (size_t i = 0; i < sizeof cases / sizeof cases[0]; ++i) {
    memset(in, ' ', sizeof in);
    put(in, HKIN_PREMNO_OFF, HKIN_PREMNO_LEN, cases[i].premno);
    put(in, HKIN_STREET_OFF, HKIN_STREET_LEN, cases[i].street);
    put(in, HKIN_REGION_OFF, HKIN_REGION_LEN, cases[i].region);
    hk_mtci("P", &handle, in, out, NULL, NULL, NULL, NULL, NULL, NULL, NULL,
            NULL, NULL, NULL, NULL, NULL, NULL, NULL);
    if (out[HKOUT_RETCODE_OFF] != cases[i].rc ||
        out[HKOUT_MATCHSTAT_OFF] != cases[i].status ||
        memcmp(out + HKOUT_REFCODE_OFF, cases[i].ref, 8) != 0) {
      printf("%s %s: got %c %c %.8s, want %c %c %s\n", cases[i].premno,
             cases[i].street, out[HKOUT_RETCODE_OFF], out[HKOUT_MATCHSTAT_OFF],
             out + HKOUT_REFCODE_OFF, cases[i].rc, cases[i].status,
             cases[i].ref);
      failed = 1;
    }
  }
  hk_mtci("C", &handle, NULL, out, "L", NULL, NULL, NULL, NULL, NULL, NULL,
          NULL, NULL, NULL, NULL, NULL, NULL, NULL);
  return failed;
}

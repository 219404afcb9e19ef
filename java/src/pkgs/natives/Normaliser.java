package pkgs.natives;

import java.nio.charset.StandardCharsets;

/**
 * The library's input normalisation, for {@link Address}: the same tidying of the fields people
 * write (case, blanks, full-width letters, region spellings and districts) that the batch tool
 * applies, so that Java and the tool make the same record of the same address.
 */
final class Normaliser {
  static {
    NativeLibrary.load();
  }

  private Normaliser() {}

  /**
   * Tidies the nine fields (refcode, premno, street, building, unit, extra, district, region, mode;
   * UTF-8 bytes each, a null element empty) into the 200-byte inRec. Returns 0, or a status with a
   * NUL-terminated UTF-8 reason in reason. Never throws.
   */
  static native int normalise(byte[][] fields, byte[] inRec, byte[] reason);

  /** The input record of the fields, or IllegalArgumentException with the library's reason. */
  static byte[] record(String[] fields) {
    byte[][] bytes = new byte[fields.length][];
    for (int i = 0; i < fields.length; i++) {
      bytes[i] = fields[i] == null ? null : fields[i].getBytes(StandardCharsets.UTF_8);
    }
    byte[] rec = new byte[200];
    byte[] reason = new byte[256];
    if (normalise(bytes, rec, reason) != 0) {
      int end = 0;
      while (end < reason.length && reason[end] != 0) {
        end++;
      }
      throw new IllegalArgumentException(new String(reason, 0, end, StandardCharsets.UTF_8));
    }
    return rec;
  }
}

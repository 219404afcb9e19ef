package pkgs.natives;

/**
 * The library's line geocoder, for {@link Geocoder#geocode(String)}: an address written as one
 * line of text split into the fields of the input record and geocoded, the most likely split
 * first, on an open instance.
 */
final class LineGeocoder {
  static {
    NativeLibrary.load();
  }

  private LineGeocoder() {}

  /**
   * Geocodes the line (UTF-8 bytes) on the instance in slot handle. outRec (300 bytes) receives
   * the result, inRec (200 bytes, may be null) the input record of the split kept, split (two
   * ints, may be null) which split was kept and how many were tried, and text a NUL-terminated
   * UTF-8 note of how the line was read, or the reason it was refused. Returns 0, or the status
   * of a refusal (outRec then holds 'E' in byte 0). An invalid handle gives 'A' in byte 0. Never
   * throws.
   */
  static native int geocodeLine(
      int handle, byte[] line, byte[] inRec, byte[] outRec, int[] split, byte[] text);
}

package pkgs.natives;

/**
 * The native methods of liborloHKGeocoder.
 *
 * <p>Records are fixed-width byte arrays: {@code inRec} 200 bytes, {@code outRec} 300 bytes (byte
 * 0 is the return code), {@code namelist} 30000 and {@code reclist} 7500 bytes (used only by
 * listing mode 3; null is accepted). Strings may be null. No method throws: a failure is reported
 * by a one-letter marker in byte 0 of the record. Opens and closes are serialised inside the
 * library; processing on different handles may run on different threads at once, but one handle
 * must serve one call at a time. Most Java code should use {@link Geocoder} instead.
 */
public final class OrloHKGeocoder {
  static {
    System.loadLibrary("orloHKGeocoder");
  }

  private OrloHKGeocoder() {}

  /** Opens a geocoder instance; returns its handle (0..199), or -1 when 200 are open. */
  public static native int openGeocoder(byte[] inRec, byte[] outRec, String options,
      String skipBaseDate, String reportLine1, String reportLine2, String reportLine3,
      String reportLine4, String reportLine5, String reportLine6, String reportPath,
      String level1Path, String level2Path, String basedataPath, byte[] namelist, byte[] reclist);

  /** Geocodes the address in inRec into outRec on the instance {@code handle}. */
  public static native void process(int handle, byte[] inRec, byte[] outRec, String options,
      String skipBaseDate, String reportLine1, String reportLine2, String reportLine3,
      String reportLine4, String reportLine5, String reportLine6, String reportPath,
      String level1Path, String level2Path, String basedataPath, byte[] namelist, byte[] reclist);

  /** Geocodes one address in a private copy of the instance, leaving the instance unchanged. */
  public static native void minProcess(int handle, byte[] inRec, byte[] outRec, String options,
      String skipBaseDate, String reportLine1, String reportLine2, String reportLine3,
      String reportLine4, String reportLine5, String reportLine6, String reportPath,
      String level1Path, String level2Path, String basedataPath, byte[] namelist, byte[] reclist);

  /** Closes the instance, writing the accuracy statement when the options allow it. */
  public static native void closeGeocoder(int handle, byte[] inRec, byte[] outRec, String options,
      String skipBaseDate, String reportLine1, String reportLine2, String reportLine3,
      String reportLine4, String reportLine5, String reportLine6, String reportPath,
      String level1Path, String level2Path, String basedataPath, byte[] namelist, byte[] reclist);

  /** Prints the message of the return code in byte 0 of record on standard error; returns 0. */
  public static native int getErrorMsg(byte[] record);

  /** Fills the 200-byte inRec from the caller's 8528-byte source record. */
  public static native void copyFields(byte[] source, byte[] inRec);
}

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
 *
 * <p>The native library is loaded with this class: from {@code java.library.path} when it is
 * there, otherwise from the copy the jar carries for its platform. When neither works the class
 * fails to initialise with an {@link UnsatisfiedLinkError} that names both places.
 */
public final class OrloHKGeocoder {
  static {
    NativeLibrary.load();
  }

  private OrloHKGeocoder() {}

  /**
   * Opens a geocoder instance (call type "O"): opens the three files and loads the LEVEL1 index
   * (with options' second character 'M', LEVEL2 and BASEDATA too). The outcome is in byte 0 of
   * outRec: '0' open, '3' to '8' a failure (the handle stays taken until closed), 'L' when 200
   * instances are open, 'X' when a failure escaped.
   *
   * @param inRec the 200-byte input record (not changed)
   * @param outRec the 300-byte output record; byte 0 receives the return code
   * @param options the option string, or null
   * @param skipBaseDate when not empty, the close reads no database date from BASEDATA
   * @param reportLine1 first free line of the accuracy statement
   * @param reportLine2 second free line
   * @param reportLine3 third free line
   * @param reportLine4 fourth free line
   * @param reportLine5 fifth free line
   * @param reportLine6 sixth free line
   * @param reportPath the path of the accuracy statement
   * @param level1Path the path of LEVEL1
   * @param level2Path the path of LEVEL2
   * @param basedataPath the path of BASEDATA
   * @param namelist the 30000-byte street list area of listing mode 3, or null
   * @param reclist the 7500-byte record list area of listing mode 3, or null
   * @return the handle (0..199), or -1 when no slot is free or a failure escaped
   */
  public static native int openGeocoder(byte[] inRec, byte[] outRec, String options,
      String skipBaseDate, String reportLine1, String reportLine2, String reportLine3,
      String reportLine4, String reportLine5, String reportLine6, String reportPath,
      String level1Path, String level2Path, String basedataPath, byte[] namelist, byte[] reclist);

  /**
   * Geocodes the address in inRec into outRec on the instance (call type "P"), keeping the
   * search's caches in the instance for the next call. Byte 0 of outRec: '0' no reference
   * written, '1' reference written, 'A' instance not open, 'Y' a failure escaped.
   *
   * @param handle an index returned by {@link #openGeocoder} and not yet closed
   * @param inRec the 200-byte input record (not changed)
   * @param outRec the 300-byte output record; byte 0 receives the return code
   * @param options the option string, or null
   * @param skipBaseDate when not empty, the close reads no database date from BASEDATA
   * @param reportLine1 first free line of the accuracy statement
   * @param reportLine2 second free line
   * @param reportLine3 third free line
   * @param reportLine4 fourth free line
   * @param reportLine5 fifth free line
   * @param reportLine6 sixth free line
   * @param reportPath the path of the accuracy statement
   * @param level1Path the path of LEVEL1
   * @param level2Path the path of LEVEL2
   * @param basedataPath the path of BASEDATA
   * @param namelist the 30000-byte street list area of listing mode 3, or null
   * @param reclist the 7500-byte record list area of listing mode 3, or null
   */
  public static native void process(int handle, byte[] inRec, byte[] outRec, String options,
      String skipBaseDate, String reportLine1, String reportLine2, String reportLine3,
      String reportLine4, String reportLine5, String reportLine6, String reportPath,
      String level1Path, String level2Path, String basedataPath, byte[] namelist, byte[] reclist);

  /**
   * Geocodes one address in a private copy of the instance (call type "R"), leaving the instance
   * unchanged; the copy opens LEVEL2 and BASEDATA afresh unless options' second character is 'M',
   * and closes by the rules of {@link #closeGeocoder} (options starting with 'L' write no
   * statement). Byte 0 of outRec as for {@link #process}.
   *
   * @param handle an index returned by {@link #openGeocoder} and not yet closed
   * @param inRec the 200-byte input record (not changed)
   * @param outRec the 300-byte output record; byte 0 receives the return code
   * @param options the option string, or null
   * @param skipBaseDate when not empty, the close reads no database date from BASEDATA
   * @param reportLine1 first free line of the accuracy statement
   * @param reportLine2 second free line
   * @param reportLine3 third free line
   * @param reportLine4 fourth free line
   * @param reportLine5 fifth free line
   * @param reportLine6 sixth free line
   * @param reportPath the path of the accuracy statement
   * @param level1Path the path of LEVEL1
   * @param level2Path the path of LEVEL2
   * @param basedataPath the path of BASEDATA
   * @param namelist the 30000-byte street list area of listing mode 3, or null
   * @param reclist the 7500-byte record list area of listing mode 3, or null
   */
  public static native void minProcess(int handle, byte[] inRec, byte[] outRec, String options,
      String skipBaseDate, String reportLine1, String reportLine2, String reportLine3,
      String reportLine4, String reportLine5, String reportLine6, String reportPath,
      String level1Path, String level2Path, String basedataPath, byte[] namelist, byte[] reclist);

  /**
   * Closes the instance and frees its handle (call type "C"), first writing the accuracy
   * statement to reportPath unless options starts with 'L', 'W', 'R' or 'X'. Byte 0 of outRec:
   * '5' when the database date could not be read, 'Z' when a failure escaped.
   *
   * @param handle an index returned by {@link #openGeocoder} and not yet closed
   * @param inRec the 200-byte input record (not changed)
   * @param outRec the 300-byte output record; byte 0 receives the return code
   * @param options the option string, or null
   * @param skipBaseDate when not empty, the close reads no database date from BASEDATA
   * @param reportLine1 first free line of the accuracy statement
   * @param reportLine2 second free line
   * @param reportLine3 third free line
   * @param reportLine4 fourth free line
   * @param reportLine5 fifth free line
   * @param reportLine6 sixth free line
   * @param reportPath the path of the accuracy statement
   * @param level1Path the path of LEVEL1
   * @param level2Path the path of LEVEL2
   * @param basedataPath the path of BASEDATA
   * @param namelist the 30000-byte street list area of listing mode 3, or null
   * @param reclist the 7500-byte record list area of listing mode 3, or null
   */
  public static native void closeGeocoder(int handle, byte[] inRec, byte[] outRec, String options,
      String skipBaseDate, String reportLine1, String reportLine2, String reportLine3,
      String reportLine4, String reportLine5, String reportLine6, String reportPath,
      String level1Path, String level2Path, String basedataPath, byte[] namelist, byte[] reclist);

  /**
   * Prints " POSTAL-MATCH_ERROR " and the message of the return code in byte 0 of record on
   * standard error; writes 'W' into byte 0 when a failure escaped.
   *
   * @param record a record whose byte 0 is a return code
   * @return 0 (no information)
   */
  public static native int getErrorMsg(byte[] record);

  /**
   * Fills the 200-byte input record from the caller's 8528-byte source record; writes 'V' into
   * byte 0 of inRec when a failure escaped (a source record too short, for instance).
   *
   * @param source the source record
   * @param inRec the input record to fill
   */
  public static native void copyFields(byte[] source, byte[] inRec);
}

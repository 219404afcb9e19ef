package pkgs.natives;

/**
 * Many records in one native call, for callers that geocode files: the per-call cost of crossing
 * into the library is paid once per batch instead of once per record.
 */
public final class BatchProcessor {
  static {
    System.loadLibrary("orloHKGeocoder");
  }

  private BatchProcessor() {}

  /**
   * Geocodes count 200-byte input records, end to end in inRecs, into count 300-byte output
   * records, end to end in outRecs, on the instance in slot handle (as {@link
   * OrloHKGeocoder#openGeocoder} returned it). Record i gets what {@link OrloHKGeocoder#process}
   * gives for input record i, in order, and the instance counts the records as those calls would.
   * A record the matcher cannot process gets its error code in its own byte 0 and the batch goes
   * on; a handle that names no open instance gives 'A' in every record. The list areas of listing
   * mode 3 are not written.
   *
   * <p>Returns the number of records processed (return code '0' or '1'); 0 when count is 0 or
   * less; -1 when an array is null or shorter than count records, or the call failed (nothing
   * written). Never throws. One instance serves one call at a time.
   */
  public static native int processBatch(int handle, byte[] inRecs, byte[] outRecs, int count);
}

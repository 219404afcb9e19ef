package pkgs.natives;

/**
 * Many records in one native call, for callers that geocode files: the per-call cost of crossing
 * into the library is paid once per batch instead of once per record.
 */
public final class BatchProcessor {
  static {
    NativeLibrary.load();
  }

  private BatchProcessor() {}

  /**
   * Geocodes count 200-byte input records, end to end in inRecs, into count 300-byte output
   * records, end to end in outRecs, on the instance in slot handle. Record i gets what {@link
   * OrloHKGeocoder#process} gives for input record i, in order, and the instance counts the
   * records as those calls would. A record the matcher cannot process gets its error code in its
   * own byte 0 and the batch goes on; a handle that names no open instance gives 'A' in every
   * record. The list areas of listing mode 3 are not written. Never throws; one instance serves
   * one call at a time.
   *
   * @param handle the slot that {@link OrloHKGeocoder#openGeocoder} returned
   * @param inRecs count input records end to end (at least 200 * count bytes)
   * @param outRecs receives count output records end to end (at least 300 * count bytes)
   * @param count the number of records
   * @return the number of records processed (return code '0' or '1'); 0 when count is 0 or less;
   *     -1 when an array is null or shorter than count records, or the call failed (nothing
   *     written)
   */
  public static native int processBatch(int handle, byte[] inRecs, byte[] outRecs, int count);
}

package pkgs.natives;

import java.nio.charset.StandardCharsets;

/**
 * The fields of a 300-byte output record, by name. Texts have their padding removed. A result of
 * {@link Geocoder#geocode(String)} also tells how the line was split.
 */
public final class GeocodeResult {
  private final byte[] record;
  private final byte[] input;
  private final int split;
  private final int splitsTried;
  private final String splitNote;

  public GeocodeResult(byte[] outRec) {
    this(outRec, null, 0, 0, "");
  }

  GeocodeResult(byte[] outRec, byte[] inRec, int split, int splitsTried, String splitNote) {
    if (outRec.length < 300) {
      throw new IllegalArgumentException("an output record has 300 bytes");
    }
    this.record = outRec.clone();
    this.input = inRec == null ? null : inRec.clone();
    this.split = split;
    this.splitsTried = splitsTried;
    this.splitNote = splitNote;
  }

  private String text(int offset, int width) {
    return new String(record, offset, width, StandardCharsets.ISO_8859_1).stripTrailing();
  }

  private boolean flag(int offset) {
    return record[offset] == 'Y';
  }

  /** '1' when a reference address was written, '0' when not, other codes on errors. */
  public char returnCode() { return (char) record[0]; }
  /** What the return code means ({@link ReturnCodes#returnMeaning}). */
  public String returnMeaning() { return ReturnCodes.returnMeaning(returnCode()); }
  /** '0' accepted; '1' no region key; '2' no street; '3', '4' rejected; '5' ambiguous. */
  public char matchStatus() { return (char) record[267]; }
  /** What the match status means ({@link ReturnCodes#matchMeaning}). */
  public String matchMeaning() { return ReturnCodes.matchMeaning(matchStatus()); }
  /** True when a reference address was chosen and written. */
  public boolean isMatched() {
    return returnCode() == ReturnCodes.HKRC_REFERENCE
        && matchStatus() == ReturnCodes.HKMS_ACCEPTED;
  }
  public String premiseNumber() { return text(1, 8); }
  public String street() { return text(9, 30); }
  public String building() { return text(39, 30); }
  public String unitLine() { return (text(69, 25) + " " + text(293, 5)).strip(); }
  public String district() { return text(94, 30); }
  public String region() { return text(124, 30); }
  public char mode() { return (char) record[154]; }
  public String line1() { return text(155, 50); }
  public String line2() { return text(205, 50); }
  public String refCode() { return text(255, 3); }
  public String refId() { return text(258, 5); }
  public boolean areaChanged() { return flag(264); }
  public boolean streetChanged() { return flag(265); }
  public boolean premiseChanged() { return flag(266); }
  public String refLine() { return text(268, 25); }
  public char grade() { return (char) record[298]; }
  public boolean buildingFromReference() { return flag(299); }

  /** A copy of the raw 300-byte record. */
  public byte[] toRecord() { return record.clone(); }

  /** For a line: which split of it the result is from (1 the most likely); 0 otherwise. */
  public int split() { return split; }
  /** For a line: how many splits went to the matcher; 0 otherwise. */
  public int splitsTried() { return splitsTried; }
  /** For a line: how it was read ("region KLN from the district; street ..."); else empty. */
  public String splitNote() { return splitNote; }
  /** For a line: a copy of the 200-byte input record of the split kept; null otherwise. */
  public byte[] inputRecord() { return input == null ? null : input.clone(); }
}

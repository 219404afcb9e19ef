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

  /**
   * Wraps an output record as the native methods wrote it.
   *
   * @param outRec the output record (300 bytes or more); a copy is kept
   * @throws IllegalArgumentException when outRec is shorter than 300 bytes
   */
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

  /** {@return the return code: '1' a reference address was written, '0' not, others errors} */
  public char returnCode() { return (char) record[0]; }
  /** {@return what the return code means ({@link ReturnCodes#returnMeaning})} */
  public String returnMeaning() { return ReturnCodes.returnMeaning(returnCode()); }
  /** {@return the match status: '0' accepted, '1' no region key, '2' no street, '3' or '4'
   * rejected, '5' ambiguous} */
  public char matchStatus() { return (char) record[267]; }
  /** {@return what the match status means ({@link ReturnCodes#matchMeaning})} */
  public String matchMeaning() { return ReturnCodes.matchMeaning(matchStatus()); }
  /** {@return true when a reference address was chosen and written} */
  public boolean isMatched() {
    return returnCode() == ReturnCodes.HKRC_REFERENCE
        && matchStatus() == ReturnCodes.HKMS_ACCEPTED;
  }
  /** {@return the premise number exactly as the input gave it} */
  public String premiseNumber() { return text(1, 8); }
  /** {@return the street: the reference street when a reference address was written} */
  public String street() { return text(9, 30); }
  /** {@return the building: the reference's when it has one, else the input's} */
  public String building() { return text(39, 30); }
  /** {@return the floor and unit line, both of its pieces} */
  public String unitLine() { return (text(69, 25) + " " + text(293, 5)).strip(); }
  /** {@return the district as the input gave it} */
  public String district() { return text(94, 30); }
  /** {@return the region as the input gave it} */
  public String region() { return text(124, 30); }
  /** {@return the record mode byte of the input} */
  public char mode() { return (char) record[154]; }
  /** {@return the first composed address line} */
  public String line1() { return text(155, 50); }
  /** {@return the second composed address line} */
  public String line2() { return text(205, 50); }
  /** {@return the written reference's 3-character code; empty when none was written} */
  public String refCode() { return text(255, 3); }
  /** {@return the written reference's 5-character id; empty when none was written} */
  public String refId() { return text(258, 5); }
  /** {@return true when the district or region differs from the input's} */
  public boolean areaChanged() { return flag(264); }
  /** {@return true when the street differs from the input's} */
  public boolean streetChanged() { return flag(265); }
  /** {@return true when the premise number or unit line differs from the input's} */
  public boolean premiseChanged() { return flag(266); }
  /** {@return the first 25 characters of the written reference's address text} */
  public String refLine() { return text(268, 25); }
  /** {@return the grade: '9' without a written reference, else its penalty count's first digit} */
  public char grade() { return (char) record[298]; }
  /** {@return true when the building name is the reference's} */
  public boolean buildingFromReference() { return flag(299); }

  /** {@return a copy of the raw 300-byte record} */
  public byte[] toRecord() { return record.clone(); }

  /** {@return for a line, which split of it the result is from (1 the most likely); else 0} */
  public int split() { return split; }
  /** {@return for a line, how many splits went to the matcher; else 0} */
  public int splitsTried() { return splitsTried; }
  /** {@return for a line, how it was read ("region KLN from the district; ..."); else empty} */
  public String splitNote() { return splitNote; }
  /** {@return for a line, a copy of the 200-byte input record of the split kept; else null} */
  public byte[] inputRecord() { return input == null ? null : input.clone(); }
}

package pkgs.natives;

import java.nio.charset.StandardCharsets;
import java.util.Arrays;

/**
 * An input address, built field by field and turned into the 200-byte input record.
 *
 * <p>By default the fields are taken as people write them and tidied by the library's input
 * normalisation, as the batch tool does: letters in upper case, blanks collapsed, full-width
 * letters and digits made plain, the region as its key (HK, KLN, NT) whether spelt out
 * ("Kowloon", "N.T.") or taken from the district ("Tsim Sha Tsui") when it is empty. {@link
 * #normalised(boolean) normalised(false)} places the fields as given instead (encoded as
 * ISO-8859-1, cut to their widths), for callers that already write the matcher's form.
 */
public final class Address {
  private static final int REFCODE = 0;
  private static final int PREMNO = 1;
  private static final int STREET = 2;
  private static final int BUILDING = 3;
  private static final int UNIT = 4;
  private static final int EXTRA = 5;
  private static final int DISTRICT = 6;
  private static final int REGION = 7;
  private static final int MODE = 8;
  // Offset and width of each field in the record; the unit line continues at 193 for 5.
  private static final int[] OFFSET = {7, 10, 18, 48, 78, 103, 133, 163, 199};
  private static final int[] WIDTH = {3, 8, 30, 30, 25, 30, 30, 30, 1};

  private final String[] fields = new String[9];
  private boolean normalised = true;

  /** An address with every field blank. */
  public Address() {}

  private Address set(int field, String text) {
    fields[field] = text;
    return this;
  }

  // Each setter below replaces its field; null leaves the field blank.

  /**
   * Sets the district reference code (3 characters).
   *
   * @param s the code, or null for none
   * @return this address
   */
  public Address refCode(String s) { return set(REFCODE, s); }

  /**
   * Sets the premise (house) number (8 characters), for example "22" or "9D".
   *
   * @param s the number as written, or null for none
   * @return this address
   */
  public Address premiseNumber(String s) { return set(PREMNO, s); }

  /**
   * Sets the street name (30 characters).
   *
   * @param s the street, or null for none
   * @return this address
   */
  public Address street(String s) { return set(STREET, s); }

  /**
   * Sets the building name (30 characters).
   *
   * @param s the building, or null for none
   * @return this address
   */
  public Address building(String s) { return set(BUILDING, s); }

  /**
   * Sets the extra address line (30 characters).
   *
   * @param s the line, or null for none
   * @return this address
   */
  public Address extraLine(String s) { return set(EXTRA, s); }

  /**
   * Sets the district (30 characters); tidied, it also gives the region when that is empty.
   *
   * @param s the district, or null for none
   * @return this address
   */
  public Address district(String s) { return set(DISTRICT, s); }

  /**
   * Sets the region: its key (HK, KLN, NT) or, tidied, any usual spelling of it.
   *
   * @param s the region, or null for none
   * @return this address
   */
  public Address region(String s) { return set(REGION, s); }

  /**
   * Sets the floor and unit line of up to 30 characters (stored in pieces of 25 and 5).
   *
   * @param s the line, or null for none
   * @return this address
   */
  public Address unitLine(String s) { return set(UNIT, s); }

  /**
   * Sets the record mode byte ('1', '3', '4', 'E', 'F'); blank when not set.
   *
   * @param c the mode
   * @return this address
   */
  public Address mode(char c) { return set(MODE, String.valueOf(c)); }

  /**
   * Chooses whether {@link #toRecord} tidies the fields (true, the default) or places them as
   * given.
   *
   * @param on true to tidy the fields
   * @return this address
   */
  public Address normalised(boolean on) {
    normalised = on;
    return this;
  }

  /**
   * The 200-byte input record. Tidied, it throws IllegalArgumentException naming the field and the
   * reason when a field cannot be tidied (characters outside Latin-1 such as Chinese, a control
   * character, more characters than the field holds).
   *
   * @return a new 200-byte record
   * @throws IllegalArgumentException when a field cannot be tidied
   */
  public byte[] toRecord() {
    return normalised ? Normaliser.record(fields) : asGiven();
  }

  private byte[] asGiven() {
    byte[] record = new byte[200];
    Arrays.fill(record, (byte) ' ');
    for (int f = 0; f < fields.length; f++) {
      byte[] b =
          fields[f] == null ? new byte[0] : fields[f].getBytes(StandardCharsets.ISO_8859_1);
      System.arraycopy(b, 0, record, OFFSET[f], Math.min(WIDTH[f], b.length));
      if (f == UNIT && b.length > WIDTH[f]) {
        System.arraycopy(b, WIDTH[f], record, 193, Math.min(5, b.length - WIDTH[f]));
      }
    }
    return record;
  }
}

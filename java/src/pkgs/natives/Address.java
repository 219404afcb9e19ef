package pkgs.natives;

import java.nio.charset.StandardCharsets;
import java.util.Arrays;

/**
 * An input address, built field by field and turned into the 200-byte input record. Texts are
 * encoded as ISO-8859-1, cut to their field widths and blank-padded.
 */
public final class Address {
  private final byte[] record = new byte[200];

  /** An address with every field blank. */
  public Address() {
    Arrays.fill(record, (byte) ' ');
  }

  private Address put(int offset, int width, String text) {
    byte[] bytes = text == null ? new byte[0] : text.getBytes(StandardCharsets.ISO_8859_1);
    Arrays.fill(record, offset, offset + width, (byte) ' ');
    System.arraycopy(bytes, 0, record, offset, Math.min(width, bytes.length));
    return this;
  }

  // Each setter below replaces its field: the text is cut to the field's width and padded with
  // blanks; null leaves the field blank.

  /**
   * Sets the district reference code (3 characters).
   *
   * @param s the code, or null for none
   * @return this address
   */
  public Address refCode(String s) { return put(7, 3, s); }

  /**
   * Sets the premise (house) number (8 characters), for example "22" or "9D".
   *
   * @param s the number as written, or null for none
   * @return this address
   */
  public Address premiseNumber(String s) { return put(10, 8, s); }

  /**
   * Sets the street name (30 characters), in upper case as the reference data holds it.
   *
   * @param s the street, or null for none
   * @return this address
   */
  public Address street(String s) { return put(18, 30, s); }

  /**
   * Sets the building name (30 characters).
   *
   * @param s the building, or null for none
   * @return this address
   */
  public Address building(String s) { return put(48, 30, s); }

  /**
   * Sets the extra address line (30 characters).
   *
   * @param s the line, or null for none
   * @return this address
   */
  public Address extraLine(String s) { return put(103, 30, s); }

  /**
   * Sets the district name (30 characters).
   *
   * @param s the district, or null for none
   * @return this address
   */
  public Address district(String s) { return put(133, 30, s); }

  /**
   * Sets the region key (30 characters): "HK", "KLN" or "NT" in the sample database.
   *
   * @param s the region, or null for none
   * @return this address
   */
  public Address region(String s) { return put(163, 30, s); }

  /**
   * Sets the 30-character floor and unit line, stored in its two pieces of 25 and 5.
   *
   * @param s the line, or null for none
   * @return this address
   */
  public Address unitLine(String s) {
    String text = s == null ? "" : s;
    put(78, 25, text.length() > 25 ? text.substring(0, 25) : text);
    return put(193, 5, text.length() > 25 ? text.substring(25) : "");
  }

  /**
   * Sets the record mode byte; blank when not set.
   *
   * @param c the mode: '1', '3', '4', 'E' or 'F'
   * @return this address
   */
  public Address mode(char c) {
    record[199] = (byte) c;
    return this;
  }

  /**
   * Returns the input record for the native methods.
   *
   * @return a copy of the 200-byte input record
   */
  public byte[] toRecord() {
    return record.clone();
  }
}

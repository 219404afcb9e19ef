package pkgs.natives;

import java.nio.charset.StandardCharsets;
import java.util.Arrays;

/**
 * An input address, built field by field and turned into the 200-byte input record. Texts are
 * encoded as ISO-8859-1, cut to their field widths and blank-padded.
 */
public final class Address {
  private final byte[] record = new byte[200];

  public Address() {
    Arrays.fill(record, (byte) ' ');
  }

  private Address put(int offset, int width, String text) {
    byte[] bytes = text == null ? new byte[0] : text.getBytes(StandardCharsets.ISO_8859_1);
    Arrays.fill(record, offset, offset + width, (byte) ' ');
    System.arraycopy(bytes, 0, record, offset, Math.min(width, bytes.length));
    return this;
  }

  public Address refCode(String s) { return put(7, 3, s); }
  public Address premiseNumber(String s) { return put(10, 8, s); }
  public Address street(String s) { return put(18, 30, s); }
  public Address building(String s) { return put(48, 30, s); }
  public Address extraLine(String s) { return put(103, 30, s); }
  public Address district(String s) { return put(133, 30, s); }
  public Address region(String s) { return put(163, 30, s); }

  /** The 30-character floor and unit line, stored in its two pieces of 25 and 5. */
  public Address unitLine(String s) {
    String text = s == null ? "" : s;
    put(78, 25, text.length() > 25 ? text.substring(0, 25) : text);
    return put(193, 5, text.length() > 25 ? text.substring(25) : "");
  }

  /** The record mode byte ('1', '3', '4', 'E', 'F'); blank when not set. */
  public Address mode(char c) {
    record[199] = (byte) c;
    return this;
  }

  /** A copy of the 200-byte input record. */
  public byte[] toRecord() {
    return record.clone();
  }
}

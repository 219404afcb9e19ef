package pkgs.natives;

import java.nio.charset.StandardCharsets;
import java.nio.file.Path;

/**
 * One geocoder instance over a reference database directory (LEVEL1, LEVEL2, BASEDATA).
 *
 * <pre>{@code
 * try (Geocoder g = Geocoder.open(Path.of("/data/hk"))) {
 *   GeocodeResult r = g.geocode(new Address().premiseNumber("88").street("NATHAN RD").region("KLN"));
 *   if (r.isMatched()) System.out.println(r.line1() + " / " + r.line2());
 *   GeocodeResult l = g.geocode("Flat B, 12/F, 28 Nathan Rd, TST, Kowloon");
 * }
 * }</pre>
 *
 * <p>An instance serves one call at a time: give each thread its own. Opening fails with a {@link
 * GeocoderException} carrying the library's return code. Closing writes no accuracy statement
 * unless one was requested with {@link #open(Path, String, Path)}.
 */
public final class Geocoder implements AutoCloseable {
  private final int handle;
  private final Path db;
  private final String options;
  private final String reportPath;
  private final byte[] outRec = new byte[300];
  private final byte[] namelist = new byte[30000];
  private final byte[] reclist = new byte[7500];
  private boolean closed;

  private Geocoder(int handle, Path db, String options, String reportPath) {
    this.handle = handle;
    this.db = db;
    this.options = options;
    this.reportPath = reportPath;
  }

  /**
   * Opens the database in directory db with no options (files read as needed, no listings).
   *
   * @param db the folder holding LEVEL1, LEVEL2 and BASEDATA
   * @return the open instance; close it (try-with-resources) to release its slot and memory
   * @throws GeocoderException when the files cannot be opened or all 200 slots are taken
   */
  public static Geocoder open(Path db) {
    return open(db, "", null);
  }

  /**
   * Opens the database in directory db.
   *
   * @param db the folder holding LEVEL1, LEVEL2 and BASEDATA
   * @param options the open option string (for example "YM": its second character 'M' holds the
   *     files in memory), or null
   * @param report the path of the accuracy statement written at close, or null for none
   * @return the open instance; close it (try-with-resources) to release its slot and memory
   * @throws GeocoderException when the files cannot be opened or all 200 slots are taken
   */
  public static Geocoder open(Path db, String options, Path report) {
    byte[] in = new Address().toRecord();
    byte[] out = new byte[300];
    String reportPath = report == null ? null : report.toString();
    int handle =
        OrloHKGeocoder.openGeocoder(
            in, out, options, "", "", "", "", "", "", "", reportPath,
            db.resolve("LEVEL1").toString(), db.resolve("LEVEL2").toString(),
            db.resolve("BASEDATA").toString(), null, null);
    if (handle < 0) {
      throw new GeocoderException((char) out[0], "no free geocoder slot");
    }
    Geocoder g = new Geocoder(handle, db, options, reportPath);
    if (out[0] != ReturnCodes.HKRC_OK) {
      g.close();
      throw new GeocoderException((char) out[0], "cannot open " + db);
    }
    return g;
  }

  /**
   * Geocodes one address on this instance, which keeps the street table and candidates of the
   * search for the next address.
   *
   * @param address the input address
   * @return the result
   * @throws IllegalStateException when the instance is closed
   */
  public GeocodeResult geocode(Address address) {
    return call(address, false);
  }

  /**
   * Geocodes one address written as a line of text ("Rm 1203 Times Sq 1 Matheson St Causeway Bay
   * HK"): the library splits it into the fields of the input record (street and building names
   * from this database), tries the likely splits through the matcher and keeps the best; the
   * result says which split it kept ({@link GeocodeResult#split()}, {@link
   * GeocodeResult#splitNote()}). The instance counts one record for the line.
   *
   * @param line the address as one line of text
   * @return the result of the split kept
   * @throws IllegalStateException when the instance is closed
   * @throws IllegalArgumentException when the line is refused (empty, longer than an input record
   *     can carry, or in characters such as Chinese that have no Latin-1 form), with the reason
   */
  public GeocodeResult geocode(String line) {
    if (closed) {
      throw new IllegalStateException("geocoder is closed");
    }
    byte[] in = new byte[200];
    int[] split = new int[2];
    byte[] text = new byte[256];
    int status =
        LineGeocoder.geocodeLine(
            handle, line.getBytes(StandardCharsets.UTF_8), in, outRec, split, text);
    int end = 0;
    while (end < text.length && text[end] != 0) {
      end++;
    }
    String said = new String(text, 0, end, StandardCharsets.UTF_8);
    if (status != 0) {
      throw new IllegalArgumentException(said);
    }
    return new GeocodeResult(outRec, in, split[0], split[1], said);
  }

  /**
   * Geocodes one address in a private copy of the instance, which stays unchanged (its caches
   * and counters included).
   *
   * @param address the input address
   * @return the result
   * @throws IllegalStateException when the instance is closed
   */
  public GeocodeResult geocodeIsolated(Address address) {
    return call(address, true);
  }

  private GeocodeResult call(Address address, boolean isolated) {
    if (closed) {
      throw new IllegalStateException("geocoder is closed");
    }
    byte[] in = address.toRecord();
    String l1 = db.resolve("LEVEL1").toString();
    String l2 = db.resolve("LEVEL2").toString();
    String bd = db.resolve("BASEDATA").toString();
    if (isolated) {
      // The private copy's close must not write a statement ('L' first); its second character
      // keeps the copy on the instance's memory images in memory mode.
      String copyOptions = inMemory() ? "LM" : "L";
      OrloHKGeocoder.minProcess(
          handle, in, outRec, copyOptions, "", "", "", "", "", "", "", null, l1, l2, bd,
          namelist, reclist);
    } else {
      OrloHKGeocoder.process(
          handle, in, outRec, options, "", "", "", "", "", "", "", null, l1, l2, bd, namelist,
          reclist);
    }
    return new GeocodeResult(outRec);
  }

  private boolean inMemory() {
    return options != null
        && options.length() >= 2
        && Character.toUpperCase(options.charAt(1)) == 'M';
  }

  /**
   * Closes the instance and frees its slot, writing the accuracy statement when one was asked for
   * at open. A second close does nothing.
   */
  @Override
  public void close() {
    if (closed) {
      return;
    }
    closed = true;
    // A close writes the accuracy statement unless its options start with 'L'.
    String closeOptions = reportPath == null ? "L" : options;
    OrloHKGeocoder.closeGeocoder(
        handle, new Address().toRecord(), new byte[300], closeOptions, null, "", "", "", "", "",
        "", reportPath, null, null, null, null, null);
  }
}

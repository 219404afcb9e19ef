package pkgs.natives;

import java.io.ByteArrayOutputStream;
import java.io.IOException;
import java.io.InputStream;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;
import pkgs.natives.examples.GeocodeCsv;

/**
 * Tests of the native methods in a real virtual machine: results equal to the native batch
 * geocoder's, invalid handles, markers for bad arguments, console messages (captured from a child
 * virtual machine), the source record mapping, concurrent instances, the Address builder's input
 * normalisation and address lines.
 *
 * <p>Arguments: the sample database directory, the sample addresses CSV and the hkgeocode
 * executable. Prints "N passed, N failed" and exits non-zero on any failure.
 */
public final class NativeBoundaryTest {
  private static int passed;
  private static int failed;
  private static Path db;
  private static List<byte[]> records;

  private NativeBoundaryTest() {}

  public static void main(String[] args) throws Exception {
    if (args.length > 0 && args[0].equals("--child")) {
      child(args[1]);
      return;
    }
    db = Path.of(args[0]);
    records = new ArrayList<>();
    for (Address a : GeocodeCsv.readAddresses(Path.of(args[1]))) {
      records.add(a.toRecord());
    }
    check(records.size() >= 200, "sample addresses loaded");
    sameResultsAsNativeBatch(Path.of(args[2]));
    invalidHandlesAreRejected();
    badArgumentsGiveMarkers();
    consoleMessagesAreExact();
    copyFieldsMapsSourceRecords();
    threadsGiveIdenticalResults();
    minProcessLeavesTheInstanceCounters();
    addressesAreTidiedLikeTheBatchTool();
    linesAreSplitAndGeocoded();
    System.out.println(passed + " passed, " + failed + " failed");
    System.exit(failed == 0 ? 0 : 1);
  }

  private static void check(boolean ok, String what) {
    if (ok) {
      passed++;
    } else {
      failed++;
      System.out.println("FAILED: " + what);
    }
  }

  private static String l1() { return db.resolve("LEVEL1").toString(); }
  private static String l2() { return db.resolve("LEVEL2").toString(); }
  private static String bd() { return db.resolve("BASEDATA").toString(); }

  private static byte[] blankRecord(int size) {
    byte[] r = new byte[size];
    Arrays.fill(r, (byte) ' ');
    return r;
  }

  private static int open(byte[] out, String options) {
    return OrloHKGeocoder.openGeocoder(
        blankRecord(200), out, options, "", "", "", "", "", "", "", null, l1(), l2(), bd(),
        null, null);
  }

  private static void process(int h, byte[] in, byte[] out) {
    OrloHKGeocoder.process(
        h, in, out, "", "", "", "", "", "", "", "", null, l1(), l2(), bd(), null, null);
  }

  private static void minProcess(int h, byte[] in, byte[] out) {
    OrloHKGeocoder.minProcess(
        h, in, out, "L", "", "", "", "", "", "", "", null, l1(), l2(), bd(), null, null);
  }

  private static void close(int h, String options, String report) {
    OrloHKGeocoder.closeGeocoder(
        h, blankRecord(200), new byte[300], options, "20261101", "", "", "", "", "", "", report,
        null, null, null, null, null);
  }

  private static List<byte[]> geocodeAll(List<byte[]> in) {
    byte[] out = new byte[300];
    int h = open(out, "");
    List<byte[]> results = new ArrayList<>();
    for (byte[] r : in) {
      process(h, r, out);
      results.add(out.clone());
    }
    close(h, "L", null);
    return results;
  }

  // The same records through hkgeocode --fixed (hk_mtci called from C++) and
  // through the native methods give the same output bytes.
  private static void sameResultsAsNativeBatch(Path hkgeocode) throws Exception {
    Path dir = Files.createTempDirectory("orlo-java");
    Path in = dir.resolve("in.bin");
    Path expected = dir.resolve("expected.bin");
    ByteArrayOutputStream all = new ByteArrayOutputStream();
    for (byte[] r : records) {
      all.write(r);
    }
    Files.write(in, all.toByteArray());
    Process p =
        new ProcessBuilder(
                hkgeocode.toString(), "--fixed", "--db", db.toString(), "--out",
                expected.toString(), in.toString())
            .redirectErrorStream(true)
            .start();
    String log = new String(p.getInputStream().readAllBytes(), StandardCharsets.UTF_8);
    check(p.waitFor() == 0, "hkgeocode --fixed ran: " + log);
    byte[] want = Files.readAllBytes(expected);
    List<byte[]> got = geocodeAll(records);
    check(want.length == 300 * records.size(), "hkgeocode wrote one record per input");
    int same = 0;
    int matched = 0;
    for (int i = 0; i < got.size() && 300 * (i + 1) <= want.length; i++) {
      if (Arrays.equals(got.get(i), Arrays.copyOfRange(want, 300 * i, 300 * (i + 1)))) {
        same++;
      }
      matched += got.get(i)[267] == '0' ? 1 : 0;
    }
    check(same == records.size(), "JNI results equal native results: " + same);
    GeocodeResult first = new GeocodeResult(got.get(0));
    check(
        ReturnCodes.returnMeaning('7').startsWith("LEVEL1 cannot be opened")
            && ReturnCodes.matchMeaning('5').startsWith("ambiguous: ")
            && first.returnMeaning().equals(ReturnCodes.returnMeaning(first.returnCode()))
            && first.matchMeaning() != null,
        "codes and meanings come from the library's table");
    check(matched > records.size() / 2, "most sample addresses match: " + matched);
    batchGivesTheSameRecords(all.toByteArray(), want);
  }

  // BatchProcessor.processBatch: the same records in one call; short arrays
  // and a closed slot answered without throwing.
  private static void batchGivesTheSameRecords(byte[] in, byte[] want) {
    int n = records.size();
    byte[] out = new byte[300 * n];
    int h = open(new byte[300], "");
    int processed = BatchProcessor.processBatch(h, in, out, n);
    check(Arrays.equals(out, want), "processBatch equals hkgeocode --fixed");
    check(processed == n, "processBatch counts every record processed: " + processed);
    check(BatchProcessor.processBatch(h, in, new byte[300 * n - 1], n) == -1,
        "a short output array gives -1");
    check(BatchProcessor.processBatch(h, null, out, 1) == -1, "a null input gives -1");
    close(h, "L", null);
    byte[] one = new byte[300];
    check(BatchProcessor.processBatch(h, in, one, 1) == 0 && one[0] == 'A',
        "a closed slot gives A");
  }

  private static void invalidHandlesAreRejected() {
    byte[] out = blankRecord(300);
    int closedSlot = open(out, "");
    close(closedSlot, "L", null);
    for (int h : new int[] {-1, 200, 12345, closedSlot}) {
      out[0] = '0';
      process(h, records.get(0), out);
      check(out[0] == 'A', "process on handle " + h + " gives A");
      out[0] = '0';
      minProcess(h, records.get(0), out);
      check(out[0] == 'A', "minProcess on handle " + h + " gives A");
      close(h, "L", null);
    }
  }

  private static void badArgumentsGiveMarkers() {
    byte[] out = new byte[300];
    int h = open(out, "");
    process(h, new byte[10], out);
    check(out[0] == 'Y', "a short input record gives Y");
    process(h, null, out);
    check(out[0] == 'Y', "a null input record gives Y");
    process(h, records.get(0), null);
    OrloHKGeocoder.process(
        h, records.get(0), out, null, null, null, null, null, null, null, null, null, null, null,
        null, null, null);
    check(out[0] != 'Y', "null strings are accepted");
    out[0] = 'Y';
    OrloHKGeocoder.process(
        h, records.get(0), out, "", "", "", "", "", "", "", "", null, l1(), l2(), bd(),
        new byte[5], new byte[5]);
    check(out[0] == '0' || out[0] == '1', "short list areas outside listing mode 3 are unused");
    OrloHKGeocoder.minProcess(
        h, records.get(0), out, "L", "", "", "", "", "", "", "", null, l1(), l2(), bd(),
        new byte[5], null);
    check(out[0] == '0' || out[0] == '1', "minProcess leaves short list areas unused");
    close(h, "L", null);
    int listing = open(out, "3");
    OrloHKGeocoder.process(
        listing, records.get(0), out, "", "", "", "", "", "", "", "", null, l1(), l2(), bd(),
        new byte[5], new byte[7500]);
    check(out[0] == 'Y', "a short name list in listing mode 3 gives Y");
    // The close does not read the input record: a short one still closes the instance.
    OrloHKGeocoder.closeGeocoder(
        listing, new byte[3], new byte[300], "L", "20261101", "", "", "", "", "", "", null,
        null, null, null, null, null);
    out[0] = '0';
    process(listing, records.get(0), out);
    check(out[0] == 'A', "a close with a short input record closes the instance");
    byte[] shortOut = new byte[4];
    int none = open(shortOut, "");
    check(none == -1 && shortOut[0] == 'X', "open with a short output record gives X");
    check(OrloHKGeocoder.getErrorMsg(null) == 0, "getErrorMsg(null) returns 0");
    byte[] in = blankRecord(200);
    OrloHKGeocoder.copyFields(new byte[100], in);
    check(in[0] == 'V', "copyFields with a short source gives V");
    OrloHKGeocoder.copyFields(null, null);
  }

  // Runs this class in a child virtual machine and returns its stdout and stderr.
  private static String[] runChild(String what) throws Exception {
    Process p =
        new ProcessBuilder(
                Path.of(System.getProperty("java.home"), "bin", "java").toString(),
                "-Djava.library.path=" + System.getProperty("java.library.path"),
                "-cp", System.getProperty("java.class.path"),
                NativeBoundaryTest.class.getName(), "--child", what, db.toString())
            .start();
    String out = readAll(p.getInputStream());
    String err = readAll(p.getErrorStream());
    p.waitFor();
    return new String[] {out, err};
  }

  private static String readAll(InputStream in) throws IOException {
    return new String(in.readAllBytes(), StandardCharsets.ISO_8859_1);
  }

  private static void child(String what) {
    byte[] out = new byte[300];
    if (what.equals("errmsg")) {
      out[0] = '7';
      OrloHKGeocoder.getErrorMsg(out);
      out[0] = 'A';
      OrloHKGeocoder.getErrorMsg(out);
    } else if (what.equals("limit")) {
      for (int i = 0; i < 201; i++) {
        // The open never reads the input record: the limit holds with none.
        int h =
            OrloHKGeocoder.openGeocoder(
                null, out, "", "", "", "", "", "", "", "", null, null, null, null, null, null);
        if (h < 0) {
          System.out.flush();
          System.out.print("|result " + i + " " + h + " " + (char) out[0]);
        }
      }
    }
    System.out.flush();
  }

  private static void consoleMessagesAreExact() throws Exception {
    String[] err = runChild("errmsg");
    check(
        err[1].equals(
            " POSTAL-MATCH_ERROR QMV-BAD OPEN ON LEVEL1 HKMATCH                   \n"
                + " POSTAL-MATCH_ERROR QMV-UNKNOWN ERROR MSG\n"),
        "getErrorMsg prints the exact message lines: [" + err[1] + "]");
    check(err[0].isEmpty(), "getErrorMsg prints nothing on standard output");
    String[] limit = runChild("limit");
    check(
        limit[0].equals("\n Cannot run more than 200 HKGeocoders on one server|result 200 -1 L"),
        "the 201st open prints the limit message and returns -1 with L: [" + limit[0] + "]");
  }

  private static void put(byte[] rec, int offset, String text) {
    byte[] b = text.getBytes(StandardCharsets.ISO_8859_1);
    System.arraycopy(b, 0, rec, offset, b.length);
  }

  private static String pad(String s, int width) {
    return String.format("%-" + width + "s", s);
  }

  // The mapping itself is tested in C++; this checks that both arrays reach it and the result
  // comes back.
  private static void copyFieldsMapsSourceRecords() {
    byte[] src = blankRecord(8528);
    put(src, 827, "NATHAN");
    put(src, 937, "88");
    put(src, 877, "ROAD");
    put(src, 1103, "CHUNGKING");
    put(src, 781, "36");
    put(src, 1343, "12/F");
    put(src, 2338, "KOWLOON");
    byte[] in = new byte[200];
    OrloHKGeocoder.copyFields(src, in);
    String want =
        pad("", 10) + pad("36", 8) + pad("88 NATHAN ROAD", 30) + pad("CHUNGKING", 30)
            + pad("12/F", 25) + pad("", 60) + pad("KLN", 30) + pad("", 6) + "1";
    String got = new String(in, StandardCharsets.ISO_8859_1);
    check(got.equals(want), "copyFields maps the source record: [" + got + "]");
  }

  private static void threadsGiveIdenticalResults() throws Exception {
    List<byte[]> work = new ArrayList<>();
    while (work.size() < 10000) {
      work.add(records.get(work.size() % records.size()));
    }
    List<byte[]> single = geocodeAll(work);
    ExecutorService pool = Executors.newFixedThreadPool(8);
    List<Future<List<byte[]>>> runs = new ArrayList<>();
    for (int t = 0; t < 8; t++) {
      runs.add(pool.submit(() -> geocodeAll(work)));
    }
    int identical = 0;
    for (Future<List<byte[]>> f : runs) {
      List<byte[]> r = f.get();
      boolean same = r.size() == single.size();
      for (int i = 0; same && i < r.size(); i++) {
        same = Arrays.equals(r.get(i), single.get(i));
      }
      identical += same ? 1 : 0;
    }
    pool.shutdown();
    check(identical == 8, "8 threads with their own instances give identical results");
  }

  private static void minProcessLeavesTheInstanceCounters() throws Exception {
    Path report = Files.createTempFile("orlo-report", ".txt");
    byte[] out = new byte[300];
    int h = open(out, "");
    for (int i = 0; i < 3; i++) {
      process(h, records.get(i), out);
    }
    for (int i = 0; i < 5; i++) {
      minProcess(h, records.get(i), out);
      check(out[0] == '0' || out[0] == '1', "minProcess returns a result");
    }
    close(h, "", report.toString());
    List<String> lines = Files.readAllLines(report, StandardCharsets.ISO_8859_1);
    String processed =
        lines.stream().filter(l -> l.contains("Total Number of Records Processed")).findFirst()
            .orElse("");
    check(
        processed.length() > 75 && processed.substring(61, 75).trim().equals("3"),
        "the statement counts the 3 process calls only: [" + processed + "]");
  }

  // People's spelling, tidied through the library, gives the record of the matcher's own form; a
  // field the library refuses gives its reason; the native method never throws.
  private static void addressesAreTidiedLikeTheBatchTool() {
    byte[] want =
        new Address().premiseNumber("22").street("CASTLE PEAK ROAD").district("SHAM SHUI PO")
            .region("KLN").normalised(false).toRecord();
    Address[] spellings = {
      new Address().premiseNumber(" 22 ").street("castle  peak road").district("Sham Shui Po"),
      new Address().premiseNumber("\uff12\uff12").street("Castle Peak Road")
          .district("sham shui po").region("Kowloon"),
    };
    for (Address a : spellings) {
      check(Arrays.equals(a.toRecord(), want), "tidied: [" + new String(a.toRecord()) + "]");
    }
    try (Geocoder g = Geocoder.open(db)) {
      check(g.geocode(spellings[0]).isMatched(), "a tidied address is matched");
    }
    String asGiven =
        new String(new Address().street("castle peak").normalised(false).toRecord(), 18, 11,
            StandardCharsets.ISO_8859_1);
    check(asGiven.equals("castle peak"), "normalised(false) places the text as given");
    String reason = "";
    try {
      new Address().district("\u4e5d\u9f8d").toRecord();
    } catch (IllegalArgumentException e) {
      reason = e.getMessage();
    }
    check(reason.startsWith("district: '\u4e5d' (U+4E5D) has no Latin-1 form"),
        "Chinese text is refused with its reason: " + reason);
    byte[] why = new byte[64];
    check(Normaliser.normalise(null, new byte[200], why) == 5
            && Normaliser.normalise(new byte[9][], new byte[10], null) == 5
            && Normaliser.normalise(new byte[3][], new byte[200], new byte[0]) == 5,
        "bad arguments give status 5, no exception");
  }

  private static void linesAreSplitAndGeocoded() {
    try (Geocoder g = Geocoder.open(db)) {
      GeocodeResult fielded =
          g.geocode(new Address().premiseNumber("22").street("Castle Peak Road").region("KLN"));
      GeocodeResult line = g.geocode("22 castle peak rd, sham shui po, kowloon");
      check(line.isMatched() && line.refId().equals(fielded.refId()),
          "a line finds the fielded reference: " + line.refId());
      byte[] in = line.inputRecord();
      check(new String(in, 18, 30, StandardCharsets.ISO_8859_1).strip().equals("CASTLE PEAK ROAD")
              && new String(in, 133, 30, StandardCharsets.ISO_8859_1).strip()
                  .equals("SHAM SHUI PO"),
          "the split record is returned");
      check(line.split() == 1 && line.splitsTried() == 1
              && line.splitNote().startsWith("region KLN as written"),
          "the split kept is told: " + line.split() + " " + line.splitNote());
      check(fielded.split() == 0 && fielded.inputRecord() == null,
          "a fielded result tells no split");
      for (String refused : new String[] {"", "\u5f4c\u6566\u9053", "x".repeat(900)}) {
        String reason = "";
        try {
          g.geocode(refused);
        } catch (IllegalArgumentException e) {
          reason = e.getMessage();
        }
        check(!reason.isEmpty(), "a refused line throws with its reason: " + reason);
      }
    }
    byte[] out = new byte[300];
    check(LineGeocoder.geocodeLine(-1, "22 Castle Peak Road".getBytes(StandardCharsets.UTF_8),
                null, out, null, new byte[8]) == 0
            && out[0] == 'A',
        "a line on an invalid handle gives A");
    check(LineGeocoder.geocodeLine(0, null, null, out, null, null) == 6
            && LineGeocoder.geocodeLine(0, new byte[1], new byte[10], out, null, null) == 6,
        "bad arguments give status 6, no exception");
  }
}

package pkgs.natives.bench;

import java.io.BufferedReader;
import java.io.IOException;
import java.lang.management.ManagementFactory;
import java.lang.management.ThreadMXBean;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import java.util.Random;
import pkgs.natives.Address;
import pkgs.natives.OrloHKGeocoder;

/**
 * Nanoseconds per call of the native process method, on the same input records as the C
 * benchmark of hk_mtci "P" (every 40th row of the generated reference CSV): with the region
 * blanked, where the search stops at once and the call is nearly all crossing and dispatch, and
 * exact. The difference from the C figures is what crossing into native code costs.
 *
 * <p>Usage: JniCallBenchmark DBDIR [file|memory] [CALLS]
 */
public final class JniCallBenchmark {
  private static final int ROUNDS = 5;

  private JniCallBenchmark() {}

  public static void main(String[] args) throws IOException {
    if (args.length < 1) {
      System.err.println("usage: JniCallBenchmark DBDIR [file|memory] [CALLS]");
      System.exit(2);
    }
    Path db = Path.of(args[0]);
    boolean memory = args.length > 1 && args[1].equals("memory");
    int calls = args.length > 2 ? Integer.parseInt(args[2]) : 1_000_000;
    byte[] out = new byte[300];
    byte[] names = new byte[30000];
    byte[] recs = new byte[7500];
    int handle = open(db, memory, out);
    // CPU time of this thread, as the C benchmarks report, so that other work
    // on the machine does not count.
    ThreadMXBean cpu = ManagementFactory.getThreadMXBean();
    for (boolean blank : new boolean[] {true, false}) {
      List<byte[]> inputs = inputs(db.resolve("reference.csv"), blank);
      // A search costs some 1000 times a blank call: fewer calls for it.
      int n = blank ? calls : Math.max(1, calls / 50);
      double[] nanos = new double[ROUNDS];
      run(handle, inputs, out, names, recs, n / 4); // warm up the JIT and caches
      for (int r = 0; r < ROUNDS; r++) {
        long start = cpu.getCurrentThreadCpuTime();
        run(handle, inputs, out, names, recs, n);
        nanos[r] = (double) (cpu.getCurrentThreadCpuTime() - start) / n;
      }
      Arrays.sort(nanos);
      System.out.printf(
          "JNI process, %s mode, %s: %.0f ns of CPU per call (median of %d), %.0f calls/s%n",
          memory ? "memory" : "file",
          blank ? "region blank" : "exact",
          nanos[ROUNDS / 2],
          ROUNDS,
          1e9 / nanos[ROUNDS / 2]);
    }
    OrloHKGeocoder.closeGeocoder(
        handle, new byte[200], out, "L", null, null, null, null, null, null, null, null, null,
        null, null, null, null);
  }

  private static int open(Path db, boolean memory, byte[] out) {
    Arrays.fill(out, (byte) ' ');
    int handle =
        OrloHKGeocoder.openGeocoder(
            new byte[200], out, memory ? " M" : "", null, null, null, null, null, null, null,
            null, db.resolve("LEVEL1").toString(), db.resolve("LEVEL2").toString(),
            db.resolve("BASEDATA").toString(), null, null);
    if (handle < 0 || out[0] != '0') {
      System.err.println("cannot open the database in " + db + ": code " + (char) out[0]);
      System.exit(1);
    }
    return handle;
  }

  private static void run(
      int handle, List<byte[]> inputs, byte[] out, byte[] names, byte[] recs, int calls) {
    int n = inputs.size();
    for (int i = 0; i < calls; i++) {
      OrloHKGeocoder.process(
          handle, inputs.get(i % n), out, null, null, null, null, null, null, null, null, null,
          null, null, null, names, recs);
    }
  }

  // Every 40th row of the reference CSV (columns region, street, ..., building, ..., low).
  private static List<byte[]> inputs(Path csv, boolean blankRegion) throws IOException {
    List<byte[]> list = new ArrayList<>();
    try (BufferedReader in = Files.newBufferedReader(csv, StandardCharsets.ISO_8859_1)) {
      in.readLine();
      String line;
      for (long i = 1; (line = in.readLine()) != null; i++) {
        if (i % 40 != 0) continue;
        String[] f = line.split(",", -1);
        if (f.length < 12) continue;
        Address a = new Address().street(f[1]).building(f[4]).premiseNumber(f[7]).mode('1');
        if (!blankRegion) a.region(f[0]);
        list.add(a.toRecord());
      }
    }
    if (list.isEmpty()) throw new IOException(csv + ": no rows");
    Collections.shuffle(list, new Random(42)); // random order, as the C benchmark
    return list;
  }
}

package pkgs.natives.examples;

import java.io.BufferedReader;
import java.io.IOException;
import java.io.PrintStream;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.ConcurrentLinkedQueue;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;
import pkgs.natives.Address;
import pkgs.natives.GeocodeResult;
import pkgs.natives.Geocoder;

/**
 * Geocodes a CSV file of addresses with a pool of threads, one geocoder instance per thread.
 *
 * <p>Usage: {@code java -cp orloHKGeocoder.jar pkgs.natives.examples.GeocodeCsv DBDIR
 * ADDRESSES.csv [THREADS]}. The input has the header
 * refcode,premno,street,building,unit,extra,district,region,mode and is UTF-8 text as people
 * write it (the Address builder tidies it); the output (standard output) repeats the street and
 * region and adds the result.
 */
public final class GeocodeCsv {
  private GeocodeCsv() {}

  /**
   * Runs the example.
   *
   * @param args the database folder, the CSV file and optionally the number of threads (2)
   * @throws Exception when the file cannot be read or a geocoding task fails
   */
  public static void main(String[] args) throws Exception {
    if (args.length < 2) {
      System.err.println("usage: GeocodeCsv DBDIR ADDRESSES.csv [THREADS]");
      System.exit(2);
    }
    Path db = Path.of(args[0]);
    int threads = args.length > 2 ? Integer.parseInt(args[2]) : 2;
    List<Address> addresses = readAddresses(Path.of(args[1]));

    ConcurrentLinkedQueue<Geocoder> opened = new ConcurrentLinkedQueue<>();
    ThreadLocal<Geocoder> perThread =
        ThreadLocal.withInitial(
            () -> {
              Geocoder g = Geocoder.open(db);
              opened.add(g);
              return g;
            });
    ExecutorService pool = Executors.newFixedThreadPool(threads);
    List<Future<GeocodeResult>> results = new ArrayList<>();
    for (Address a : addresses) {
      results.add(pool.submit(() -> perThread.get().geocode(a)));
    }
    PrintStream out = System.out;
    out.println("status,match,street,region,line1,line2,refcode,refid");
    int matched = 0;
    for (Future<GeocodeResult> f : results) {
      GeocodeResult r = f.get();
      matched += r.isMatched() ? 1 : 0;
      out.printf(
          "%c,%c,%s,%s,\"%s\",\"%s\",%s,%s%n",
          r.returnCode(), r.matchStatus(), r.street(), r.region(), r.line1(), r.line2(),
          r.refCode(), r.refId());
    }
    pool.shutdown();
    for (Geocoder g : opened) {
      g.close();
    }
    System.err.printf("%d addresses, %d matched, %d threads%n", results.size(), matched, threads);
  }

  /**
   * Reads the addresses of a CSV file with the header above.
   *
   * @param csv the file
   * @return its addresses in file order
   * @throws IOException when the file cannot be read
   */
  public static List<Address> readAddresses(Path csv) throws IOException {
    List<Address> list = new ArrayList<>();
    try (BufferedReader in = Files.newBufferedReader(csv, StandardCharsets.UTF_8)) {
      String header = in.readLine();
      if (header == null) {
        return list;
      }
      String line;
      while ((line = in.readLine()) != null) {
        List<String> f = splitCsv(line);
        while (f.size() < 9) {
          f.add("");
        }
        Address a =
            new Address()
                .refCode(f.get(0))
                .premiseNumber(f.get(1))
                .street(f.get(2))
                .building(f.get(3))
                .unitLine(f.get(4))
                .extraLine(f.get(5))
                .district(f.get(6))
                .region(f.get(7));
        if (!f.get(8).isEmpty()) {
          a.mode(f.get(8).charAt(0));
        }
        list.add(a);
      }
    }
    return list;
  }

  /**
   * Splits one CSV line with double-quote quoting.
   *
   * @param line the line without its end
   * @return its fields, unquoted
   */
  public static List<String> splitCsv(String line) {
    List<String> fields = new ArrayList<>();
    StringBuilder cur = new StringBuilder();
    boolean quoted = false;
    for (int i = 0; i < line.length(); i++) {
      char c = line.charAt(i);
      if (quoted) {
        if (c == '"' && i + 1 < line.length() && line.charAt(i + 1) == '"') {
          cur.append('"');
          i++;
        } else if (c == '"') {
          quoted = false;
        } else {
          cur.append(c);
        }
      } else if (c == '"') {
        quoted = true;
      } else if (c == ',') {
        fields.add(cur.toString());
        cur.setLength(0);
      } else {
        cur.append(c);
      }
    }
    fields.add(cur.toString());
    return fields;
  }
}

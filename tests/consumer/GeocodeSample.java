import java.nio.file.Path;
import pkgs.natives.Address;
import pkgs.natives.GeocodeResult;
import pkgs.natives.Geocoder;

/**
 * A Java program with nothing but the installed jar on its class path: geocodes a few addresses
 * of the sample database (argument 0) and exits 0 when every result is as expected.
 */
public final class GeocodeSample {
  private GeocodeSample() {}

  public static void main(String[] args) {
    // premise number, street, region; then return code, match status, refcode and refid.
    String[][] cases = {
      {"22", "CASTLE PEAK ROAD", "KLN", "10SSP12831"},
      {"1", "FUK WING STREET", "KLN", "10SSP10849"},
      {"61", "SUNSHINE BOULEVARD", "HK", "02"},
    };
    int failed = 0;
    try (Geocoder g = Geocoder.open(Path.of(args[0]))) {
      for (String[] c : cases) {
        GeocodeResult r = g.geocode(new Address().premiseNumber(c[0]).street(c[1]).region(c[2]));
        String got = "" + r.returnCode() + r.matchStatus() + r.refCode() + r.refId();
        if (!got.equals(c[3])) {
          System.out.println(c[0] + " " + c[1] + ": got " + got + ", want " + c[3]);
          failed++;
        }
      }
    }
    System.exit(failed == 0 ? 0 : 1);
  }
}

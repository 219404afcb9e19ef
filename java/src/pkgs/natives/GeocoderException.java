package pkgs.natives;

/** An open that failed, with the library's one-character return code. */
public final class GeocoderException extends RuntimeException {
  private static final long serialVersionUID = 1L;
  private final char code;

  public GeocoderException(char code, String message) {
    super(message + " (return code " + code + ": " + ReturnCodes.returnMeaning(code) + ")");
    this.code = code;
  }

  /** The return code: '6' BASEDATA, '7' LEVEL1, '8' LEVEL2, '3' storage, 'L' no free slot. */
  public char code() {
    return code;
  }
}

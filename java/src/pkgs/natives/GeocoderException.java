package pkgs.natives;

/** An open that failed, with the library's one-character return code. */
public final class GeocoderException extends RuntimeException {
  /** Version of the serialized form. */
  private static final long serialVersionUID = 1L;
  /** The return code. */
  private final char code;

  /**
   * An open that failed with a return code.
   *
   * @param code the library's return code
   * @param message what failed; the code and its meaning are appended
   */
  public GeocoderException(char code, String message) {
    super(message + " (return code " + code + ": " + ReturnCodes.returnMeaning(code) + ")");
    this.code = code;
  }

  /** {@return the code: '6' BASEDATA, '7' LEVEL1, '8' LEVEL2, '3' storage, 'L' no free slot} */
  public char code() {
    return code;
  }
}

#!/usr/bin/env python3
"""Writes data/sample/reference.csv, the sample Hong Kong reference set.

Real street names in their real regions (HK, KLN, NT) and districts, each
with a run of premises: single numbers, odd and even ranges, suffixed
numbers, named buildings, floor and shop records and buildings without a
number. The output is the same on every run (fixed seed, ordered lists).

Usage: scripts/make_sample_reference.py [OUTPUT]
"""
import csv
import random
import sys

# region -> district (name, reference code) -> streets
STREETS = {
    "HK": {
        ("CENTRAL", "CEN"): [
            "QUEEN'S ROAD CENTRAL", "DES VOEUX ROAD CENTRAL",
            "CONNAUGHT ROAD CENTRAL", "PEDDER STREET", "ICE HOUSE STREET",
            "DUDDELL STREET", "WYNDHAM STREET", "D'AGUILAR STREET",
            "LYNDHURST TERRACE", "HOLLYWOOD ROAD", "STANLEY STREET",
            "WELLINGTON STREET", "GAGE STREET", "ABERDEEN STREET",
            "ELGIN STREET", "STAUNTON STREET", "SHELLEY STREET",
            "PEEL STREET", "GRAHAM STREET", "COCHRANE STREET",
            "CHATER ROAD", "JACKSON ROAD", "GARDEN ROAD",
            "LOWER ALBERT ROAD", "UPPER ALBERT ROAD", "COTTON TREE DRIVE",
            "ARBUTHNOT ROAD", "OLD BAILEY STREET", "THEATRE LANE",
            "ZETLAND STREET", "QUEENSWAY", "HARCOURT ROAD",
        ],
        ("MID-LEVELS", "MID"): [
            "CAINE ROAD", "ROBINSON ROAD", "CONDUIT ROAD", "BOWEN ROAD",
            "MACDONNELL ROAD", "KENNEDY ROAD", "OLD PEAK ROAD", "MAY ROAD",
            "PEAK ROAD", "BARKER ROAD", "MAGAZINE GAP ROAD",
            "PLANTATION ROAD", "MOUNT KELLETT ROAD", "LUGARD ROAD",
            "BABINGTON PATH", "CASTLE ROAD", "SEYMOUR ROAD",
            "PRINCE'S TERRACE", "BONHAM ROAD", "GLENEALY",
        ],
        ("SHEUNG WAN", "SWN"): [
            "BONHAM STRAND", "WING LOK STREET", "JERVOIS STREET",
            "HILLIER STREET", "MORRISON STREET", "WING KUT STREET",
            "QUEEN'S ROAD WEST", "DES VOEUX ROAD WEST",
            "CONNAUGHT ROAD WEST", "POSSESSION STREET", "TANK LANE",
            "LADDER STREET", "UPPER LASCAR ROW", "WING WO STREET",
            "MAN WA LANE", "SUTHERLAND STREET", "SECOND STREET",
            "THIRD STREET", "HIGH STREET", "WESTERN STREET", "CENTRE STREET",
            "WATER STREET", "EASTERN STREET", "WILMER STREET",
        ],
        ("KENNEDY TOWN", "KTN"): [
            "BELCHER'S STREET", "CATCHICK STREET", "SMITHFIELD",
            "NEW PRAYA KENNEDY TOWN", "DAVIS STREET", "FORBES STREET",
            "NORTH STREET", "SANDS STREET", "CADOGAN STREET",
            "HOLLAND STREET", "VICTORIA ROAD", "POK FU LAM ROAD",
            "SASSOON ROAD", "HILL ROAD",
        ],
        ("WAN CHAI", "WCH"): [
            "HENNESSY ROAD", "LOCKHART ROAD", "JAFFE ROAD",
            "GLOUCESTER ROAD", "JOHNSTON ROAD", "QUEEN'S ROAD EAST",
            "FLEMING ROAD", "LUARD ROAD", "MARSH ROAD", "O'BRIEN ROAD",
            "FENWICK STREET", "TONNOCHY ROAD", "STEWART ROAD",
            "SPRING GARDEN LANE", "TAI YUEN STREET", "CROSS STREET",
            "WAN CHAI ROAD", "HARBOUR ROAD", "CONVENTION AVENUE",
            "STAR STREET", "ST. FRANCIS STREET", "AMOY STREET",
            "SHIP STREET", "STUBBS ROAD", "MORRISON HILL ROAD",
            "OI KWAN ROAD", "CANAL ROAD WEST", "BOWRINGTON ROAD",
            "HARBOUR DRIVE", "BURROWS STREET", "THOMSON ROAD",
            "SWATOW STREET",
        ],
        ("HAPPY VALLEY", "HVY"): [
            "WONG NAI CHUNG ROAD", "SING WOO ROAD", "BLUE POOL ROAD",
            "SHAN KWONG ROAD", "VILLAGE ROAD", "LEIGHTON ROAD",
            "YIK YAM STREET", "KING KWONG STREET",
        ],
        ("CAUSEWAY BAY", "CWB"): [
            "YEE WO STREET", "PATERSON STREET", "GREAT GEORGE STREET",
            "KINGSTON STREET", "EAST POINT ROAD", "PERCIVAL STREET",
            "CAROLINE HILL ROAD", "TANG LUNG STREET", "RUSSELL STREET",
            "MATHESON STREET", "SHARP STREET EAST", "YIU WA STREET",
            "HYSAN AVENUE", "LEE GARDEN ROAD", "PAK SHA ROAD",
            "KAI CHIU ROAD", "SUGAR STREET", "IRVING STREET",
            "CAUSEWAY ROAD", "TUNG LO WAN ROAD", "CANAL ROAD EAST",
            "CLEVELAND STREET",
        ],
        ("NORTH POINT", "NPT"): [
            "KING'S ROAD", "JAVA ROAD", "MARBLE ROAD", "CHUN YEUNG STREET",
            "TONG SHUI ROAD", "NORTH POINT ROAD", "FORTRESS HILL ROAD",
            "CITY GARDEN ROAD", "ELECTRIC ROAD", "TIN HAU TEMPLE ROAD",
            "TSAT TSZ MUI ROAD", "SHU KUK STREET", "BRAEMAR HILL ROAD",
            "CLOUD VIEW ROAD", "WATSON ROAD", "OIL STREET",
            "HEALTHY STREET CENTRAL", "WHITFIELD ROAD",
        ],
        ("QUARRY BAY", "QBY"): [
            "TAIKOO SHING ROAD", "TAIKOO WAN ROAD", "KORNHILL ROAD",
            "WESTLANDS ROAD", "TONG CHONG STREET", "PAN HOI STREET",
            "HOI TAI STREET", "MOUNT PARKER ROAD", "SHAU KEI WAN ROAD",
            "SHAU KEI WAN MAIN STREET EAST", "KAM WA STREET",
            "TUNG HEI ROAD", "ALDRICH BAY ROAD",
        ],
        ("CHAI WAN", "CWN"): [
            "CHAI WAN ROAD", "WAN TSUI ROAD", "SIU SAI WAN ROAD",
            "LEE CHUNG STREET", "SHING TAI ROAD", "KUT SHING STREET",
            "FUNG YIP STREET", "SUN YIP STREET", "CHEUNG LEE STREET",
            "WING TAI ROAD", "SAN HA STREET", "HING MAN STREET",
        ],
        ("ABERDEEN", "ABD"): [
            "ABERDEEN MAIN ROAD", "ABERDEEN PRAYA ROAD",
            "WONG CHUK HANG ROAD", "NAM LONG SHAN ROAD",
            "AP LEI CHAU BRIDGE ROAD", "AP LEI CHAU MAIN STREET",
            "LEE NAM ROAD", "SHUM WAN ROAD", "ISLAND ROAD",
            "REPULSE BAY ROAD", "BEACH ROAD", "SOUTH BAY ROAD",
            "STANLEY MAIN STREET", "STANLEY VILLAGE ROAD", "TAI TAM ROAD",
            "CHUNG HOM KOK ROAD", "SHEK O ROAD", "WAH FU ROAD",
            "CYBERPORT ROAD", "TIN WAN STREET", "YUE KWONG ROAD",
            "OLD MAIN STREET ABERDEEN", "CHENGTU ROAD", "HEUNG YIP ROAD",
            "NAM NING STREET", "CHI FU ROAD",
        ],
    },
    "KLN": {
        ("TSIM SHA TSUI", "TST"): [
            "NATHAN ROAD", "SALISBURY ROAD", "CANTON ROAD", "PEKING ROAD",
            "HAIPHONG ROAD", "KIMBERLEY ROAD", "GRANVILLE ROAD",
            "CAMERON ROAD", "CARNARVON ROAD", "MODY ROAD",
            "CHATHAM ROAD SOUTH", "HANKOW ROAD", "ASHLEY ROAD", "LOCK ROAD",
            "HART AVENUE", "PRAT AVENUE", "HANOI ROAD", "MIDDLE ROAD",
            "AUSTIN ROAD", "SCIENCE MUSEUM ROAD", "KOWLOON PARK DRIVE",
            "HUMPHREYS AVENUE", "BLENHEIM AVENUE", "MINDEN AVENUE",
            "KNUTSFORD TERRACE", "OBSERVATORY ROAD", "AUSTIN AVENUE",
            "KIMBERLEY STREET", "HAU FOOK STREET", "WUI CHEUNG ROAD",
        ],
        ("YAU MA TEI", "YMT"): [
            "SHANGHAI STREET", "RECLAMATION STREET", "TEMPLE STREET",
            "PORTLAND STREET", "WATERLOO ROAD", "PITT STREET", "KANSU STREET",
            "PUBLIC SQUARE STREET", "SAIGON STREET", "BOWRING STREET",
            "WOOSUNG STREET", "PARKES STREET", "JORDAN ROAD",
            "NING PO STREET", "PAK HOI STREET", "MAN MING LANE",
            "FERRY STREET", "GASCOIGNE ROAD", "BATTERY STREET",
            "NANKING STREET", "TAK HING STREET", "PILKEM STREET",
        ],
        ("MONG KOK", "MKK"): [
            "ARGYLE STREET", "SAI YEUNG CHOI STREET SOUTH",
            "SAI YEUNG CHOI STREET NORTH", "FA YUEN STREET",
            "TUNG CHOI STREET", "SHANTUNG STREET", "SOY STREET",
            "NELSON STREET", "DUNDAS STREET", "MONG KOK ROAD",
            "PRINCE EDWARD ROAD WEST", "BOUNDARY STREET", "SAI YEE STREET",
            "FIFE STREET", "TAI KOK TSUI ROAD", "IVY STREET", "BEDFORD ROAD",
            "LARCH STREET", "FUK TSUN STREET", "ELM STREET", "POPLAR STREET",
            "OAK STREET", "BEECH STREET", "CEDAR STREET", "WILLOW STREET",
            "PINE STREET", "ANCHOR STREET", "FLOWER MARKET ROAD",
            "YUEN PO STREET", "HAK PO STREET", "NULLAH ROAD",
        ],
        ("SHAM SHUI PO", "SSP"): [
            "CHEUNG SHA WAN ROAD", "UN CHAU STREET", "FUK WING STREET",
            "FUK WA STREET", "APLIU STREET", "KI LUNG STREET",
            "PEI HO STREET", "KWEILIN STREET", "NAM CHEONG STREET",
            "YEN CHOW STREET", "TAI PO ROAD", "CASTLE PEAK ROAD",
            "LAI CHI KOK ROAD", "TUNG CHAU STREET", "HAI TAN STREET",
            "YU CHAU STREET", "KIU KIANG STREET", "WONG CHUK STREET",
            "PO ON ROAD", "TAI NAN STREET", "SHEK KIP MEI STREET",
            "WING HONG STREET", "CHEUNG SHUN STREET", "CHEUNG YEE STREET",
            "LAI WAN ROAD", "MEI LAI ROAD", "BROADWAY",
        ],
        ("KOWLOON CITY", "KLC"): [
            "CARPENTER ROAD", "NGA TSIN WAI ROAD", "NAM KOK ROAD",
            "LION ROCK ROAD", "SOUTH WALL ROAD", "FUK LO TSUN ROAD",
            "HAU WONG ROAD", "KAI TAK ROAD", "MA TAU WAI ROAD",
            "TO KWA WAN ROAD", "KOWLOON CITY ROAD", "MA TAU CHUNG ROAD",
            "SUNG WONG TOI ROAD", "FARM ROAD", "PAU CHUNG STREET",
            "KADOORIE AVENUE", "LA SALLE ROAD", "DUNBAR ROAD",
            "FESSENDEN ROAD", "CUMBERLAND ROAD", "DORSET CRESCENT",
            "RUTLAND QUADRANT", "SOMERSET ROAD", "ESSEX CRESCENT",
            "SUFFOLK ROAD", "NORFOLK ROAD", "KENT ROAD", "DEVON ROAD",
            "HEREFORD ROAD", "JUNCTION ROAD", "BROADCAST DRIVE",
            "BEACON HILL ROAD",
        ],
        ("HUNG HOM", "HHM"): [
            "CHATHAM ROAD NORTH", "MAN YUE STREET", "WUHU STREET",
            "WHAMPOA STREET", "BULKELEY STREET", "DYER AVENUE",
            "GILLIES AVENUE SOUTH", "GILLIES AVENUE NORTH", "TAK MAN STREET",
            "HUNG HOM ROAD", "HUNG LOK ROAD", "HOK YUEN STREET",
            "KO SHAN ROAD", "BAKER STREET", "STATION LANE",
            "CHEONG WAN ROAD", "HUNG HOM SOUTH ROAD", "PAK KUNG STREET",
            "WINSLOW STREET", "LO LUNG HANG STREET",
        ],
        ("KWUN TONG", "KWT"): [
            "KWUN TONG ROAD", "HOW MING STREET", "HOI YUEN ROAD",
            "HUNG TO ROAD", "TSUN YIP STREET", "KING YIP STREET",
            "HOI BUN ROAD", "WAI YIP STREET", "SHING YIP STREET",
            "HIP WO STREET", "MUT WAH STREET", "HONG NING ROAD",
            "TSUI PING ROAD", "YUE MAN SQUARE", "NGAU TAU KOK ROAD",
            "WANG KWONG ROAD", "KAI CHEUNG ROAD", "SHEUNG YUET ROAD",
            "WANG CHIU ROAD", "LAM HING STREET", "CHEUNG YIP STREET",
            "LEI YUE MUN ROAD", "SAU MAU PING ROAD", "KAI TIN ROAD",
            "PING TIN STREET", "LIN TAK ROAD", "YAU TONG ROAD",
            "KO CHIU ROAD", "CHA KWO LING ROAD",
        ],
        ("WONG TAI SIN", "WTS"): [
            "LUNG CHEUNG ROAD", "SHATIN PASS ROAD", "CHING TAK STREET",
            "FUNG TAK ROAD", "TSZ WAN SHAN ROAD", "CLEAR WATER BAY ROAD",
            "CHOI HUNG ROAD", "PRINCE EDWARD ROAD EAST", "KING FUK STREET",
            "SHEUNG FUNG STREET", "TAI YAU STREET", "SZE MEI STREET",
            "YIN HING STREET", "NING YUEN STREET", "TSEUK LUK STREET",
            "PO KONG VILLAGE ROAD", "CHUK YUEN ROAD", "NGAU CHI WAN STREET",
        ],
    },
    "NT": {
        ("SHA TIN", "STN"): [
            "TAI PO ROAD", "SHA TIN CENTRE STREET",
            "SHA TIN RURAL COMMITTEE ROAD", "TAI CHUNG KIU ROAD",
            "SHA TIN WAI ROAD", "TAI WAI ROAD", "MEI TIN ROAD",
            "CHE KUNG MIU ROAD", "MA ON SHAN ROAD", "SAI SHA ROAD",
            "ON LUK STREET", "ON CHUN STREET", "HANG HONG STREET",
            "YUEN WO ROAD", "PAK HOK TING STREET", "SIU LEK YUEN ROAD",
            "YUEN SHUN CIRCUIT", "SHAN MEI STREET", "WONG CHUK YEUNG STREET",
            "FO TAN ROAD", "AU PUI WAN STREET", "MIN FAT STREET",
            "HUNG MUI KUK ROAD", "TO SHEK STREET", "CHAK CHEUNG STREET",
        ],
        ("TAI PO", "TPO"): [
            "KWONG FUK ROAD", "ON FU ROAD", "TAI PO TAI WO ROAD",
            "TING KOK ROAD", "TAI WO ROAD", "NAM WAN ROAD",
            "TAI KWONG LANE", "PO HEUNG STREET", "YAN HING STREET",
            "TAI MING LANE", "TAI MEI TUK ROAD", "DAI FU STREET",
            "DAI WAH STREET", "DAI KWAI STREET", "DAI SHUN STREET",
            "DAI HEI STREET", "DAI WANG STREET", "WAN TAU STREET",
        ],
        ("TSUEN WAN", "TSW"): [
            "CASTLE PEAK ROAD", "SHA TSUI ROAD", "CHUNG ON STREET",
            "TAI HO ROAD", "YEUNG UK ROAD", "TAI CHUNG ROAD",
            "TSUEN WAN MARKET STREET", "KWAN MUN HAU STREET",
            "CHUEN LUNG STREET", "HOI PA STREET", "LUEN YAN STREET",
            "TAK WAH STREET", "SAI LAU KOK ROAD", "TEXACO ROAD",
            "WING SHUN STREET", "HOI SHING ROAD", "TSUEN KING CIRCUIT",
            "CHAI WAN KOK STREET", "HO PUI STREET",
        ],
        ("KWAI TSING", "KWC"): [
            "KWAI CHUNG ROAD", "KWAI FONG CRESCENT", "KWAI HING ROAD",
            "TAI LIN PAI ROAD", "KWAI FUK ROAD", "HING FONG ROAD",
            "LAI KING HILL ROAD", "KWAI TAI ROAD", "TSING YI ROAD",
            "TSING KING ROAD", "CHUNG MEI ROAD", "TSING LUK STREET",
            "KWAI SHING CIRCUIT", "WO YI HOP ROAD", "SHEK YAM ROAD",
            "LEI MUK ROAD", "KWAI HEI STREET", "WAH SING STREET",
            "KWAI ON ROAD", "KWAI WING ROAD", "CHEUNG WING ROAD",
            "CHEUNG TAT ROAD", "CHING HONG ROAD",
        ],
        ("TUEN MUN", "TMN"): [
            "TUEN MUN HEUNG SZE WUI ROAD", "HOI WING ROAD", "TUEN HI ROAD",
            "WU KING ROAD", "WU CHUI ROAD", "SAN HOP LANE", "TSUN WEN ROAD",
            "PUI TO ROAD", "YIP WONG ROAD", "TSING LUN ROAD",
            "KIN WING STREET", "KIN FAT STREET", "LUNG MUN ROAD",
            "LUNG FU ROAD", "HOI CHU ROAD", "TSING WUN ROAD",
            "TIN KING ROAD",
        ],
        ("YUEN LONG", "YLG"): [
            "YUEN LONG ON NING ROAD", "KAU YUK ROAD", "TAI TONG ROAD",
            "MA WANG ROAD", "FUNG CHEUNG ROAD", "TAI KEI LENG ROAD",
            "SAU FU STREET", "FAU TSOI STREET", "KIK YEUNG ROAD",
            "LONG YAT ROAD", "HOP YICK ROAD", "TIN SHUI ROAD",
            "TIN WAH ROAD", "TIN YIU ROAD", "TIN PAK ROAD", "PING HA ROAD",
            "HUNG TIN ROAD",
        ],
        ("NORTH", "NTH"): [
            "SAN WAN ROAD", "SHA TAU KOK ROAD", "JOCKEY CLUB ROAD",
            "LUEN WO ROAD", "WO MUN STREET", "FANLING STATION ROAD",
            "PIK FUNG ROAD", "SAN FUNG AVENUE", "SAN HONG STREET",
            "SAN KUNG STREET", "LUNG SUM AVENUE", "CHOI YUEN ROAD",
            "PO SHEK WU ROAD",
        ],
        ("SAI KUNG", "SKG"): [
            "HIRAM'S HIGHWAY", "MAN NIN STREET", "FUK MAN ROAD",
            "CHAN MAN STREET", "PO TUNG ROAD", "TAI MONG TSAI ROAD",
            "PO LAM ROAD NORTH", "PO LAM ROAD SOUTH", "TONG MING STREET",
            "WAN PO ROAD", "TONG YIN STREET", "YAN KING ROAD",
            "TSEUNG KWAN O ROAD", "HANG HAU ROAD", "PO YAP ROAD",
            "CHUN YAT STREET", "TONG TAK STREET", "SHEUNG NING ROAD",
            "O KING ROAD", "KING LING ROAD", "TSUI LAM ROAD",
        ],
        ("ISLANDS", "ISL"): [
            "TAT TUNG ROAD", "YU TUNG ROAD", "SHUN TUNG ROAD",
            "TUNG CHUNG WATERFRONT ROAD", "PRAYA STREET", "SAN HING STREET",
            "TUNG WAN ROAD", "PEAK ROAD WEST", "YUNG SHUE WAN MAIN STREET",
            "NGAN WAN ROAD",
        ],
    },
}

# Short forms used in the address lines.
ABBREVIATIONS = [
    (" ROAD", " RD"), (" STREET", " ST"), (" AVENUE", " AVE"),
    (" TERRACE", " TER"), (" CRESCENT", " CRES"), (" DRIVE", " DR"),
    (" LANE", " LN"), (" SQUARE", " SQ"), (" CIRCUIT", " CCT"),
    (" CENTRAL", " C"), (" WEST", " W"), (" EAST", " E"),
    (" SOUTH", " S"), (" NORTH", " N"),
]

BUILDING_WORDS = [
    "WING ON", "HANG SENG", "GOLDEN", "PROSPERITY", "FORTUNE", "HARBOUR",
    "KING WAH", "LUK HOI", "TAI SANG", "WAH KIT", "SUN HING", "LOK SING",
    "MAN YEE", "CHUNG KING", "MIRADOR", "FOOK LEE", "KAM FUNG", "ON LOK",
    "PARK VIEW", "OCEAN", "GRAND", "SILVERCORD", "EMPEROR", "KAI FUNG",
    "YUE FUNG", "WELL ON", "SEA VIEW", "HILL VIEW", "JADE", "PEARL",
]
BUILDING_KINDS = [
    ("BUILDING", "COM"), ("MANSION", "RES"), ("MANSIONS", "RES"),
    ("HOUSE", "RES"), ("CENTRE", "COM"), ("COURT", "RES"),
    ("GARDEN", "RES"), ("INDUSTRIAL BUILDING", "IND"), ("TOWER", "COM"),
    ("PLAZA", "COM"),
]
HEADER = ["region", "street", "refcode", "refid", "building", "parity",
          "qual1", "low", "qual2", "high", "code9", "address"]
MIN_RECORDS = 5000


def abbreviate(street):
    for word, short in ABBREVIATIONS:
        street = street.replace(word, short)
    return street


def address_line(number, street, district):
    head = f"{number} " if number else ""
    line = f"{head}{abbreviate(street)} {district}"
    if len(line) > 30:
        line = f"{head}{abbreviate(street)}"
    return line[:30]


def building(rng):
    kind, code = rng.choice(BUILDING_KINDS)
    name = f"{rng.choice(BUILDING_WORDS)} {kind}"
    return name[:30], code


class Street:
    """The premises of one street, numbered up each side."""

    def __init__(self, region, district, code, name, rng):
        self.region, self.district, self.code = region, district, code
        self.name, self.rng = name, rng
        self.next = {"O": 1, "E": 2}

    def take(self, side, step=2):
        n = self.next[side]
        self.next[side] = n + step
        return n

    def record(self):
        rng = self.rng
        side = rng.choice("OE")
        kind = rng.random()
        bldg, code9, parity, qual, low, high = "", "STR", "", "", "", ""
        if kind < 0.40:  # one number, half of them a named building
            low = str(self.take(side))
            if rng.random() < 0.5:
                bldg, code9 = building(rng)
        elif kind < 0.60:  # a range on one side
            low = self.take(side)
            high = low + 2 * rng.randint(1, 4)
            self.next[side] = high + 2
            parity, low, high = side, str(low), str(high)
        elif kind < 0.70:  # a suffixed number
            low = f"{self.next[side]}{rng.choice('ABCD')}"
            bldg, code9 = building(rng)
        elif kind < 0.88:  # floors or shops of a building
            bldg, code9 = building(rng)
            # FLOOR/SHOP switches on the matcher's search for floor and
            # shop keywords (12/F, SHOP 5) in the input's unit line.
            qual = rng.choice(["FLOOR/SHOP", "FLOOR", "SHOP"])
            first = rng.randint(1, 12 if qual.startswith("FLOOR") else 60)
            low, high = str(first), str(first + rng.randint(0, 25))
        else:  # a building without a number
            bldg, code9 = building(rng)
        address = (address_line(low, self.name, self.district) if not qual
                   else bldg)
        return [self.region, self.name, self.code, "", bldg, parity, qual,
                low, qual, high, code9, address]


def rows(rng):
    streets = [Street(region, district, code, name, rng)
               for region, districts in STREETS.items()
               for (district, code), names in districts.items()
               for name in names]
    out = []
    for street in streets:
        out += [street.record() for _ in range(rng.randint(8, 26))]
    # Rows of a street need not be together in a reference CSV.
    rng.shuffle(out)
    for i, row in enumerate(out):
        row[3] = f"{3000 + i:05d}"  # unique reference ids
    return out


def check(all_rows):
    assert len(all_rows) >= MIN_RECORDS, len(all_rows)
    streets = {(r[0], r[1]) for r in all_rows}
    assert len(streets) >= 300, len(streets)
    for row in all_rows:
        for text, width in zip(row, [30, 30, 3, 5, 30, 1, 12, 5, 12, 5, 3, 30]):
            assert len(text) <= width, (text, width)


def main():
    path = sys.argv[1] if len(sys.argv) > 1 else "data/sample/reference.csv"
    rng = random.Random(20261101)
    all_rows = rows(rng)
    check(all_rows)
    with open(path, "w", newline="", encoding="ascii") as f:
        writer = csv.writer(f, lineterminator="\n")
        writer.writerow(HEADER)
        writer.writerows(all_rows)
    print(f"{path}: {len(all_rows)} records", file=sys.stderr)


if __name__ == "__main__":
    main()

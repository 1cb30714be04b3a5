#pragma once

// A few entities of the country file, as it writes them (longitudes positive
// to the West, an entity name with a comma, a WAE-only entity with "*").
inline constexpr char CountryExcerpt[] =
    R"(Spain:                    14:  37:  EU:   40.32:     3.43:    -1.0:  EA:
    AM,AN,AO,EA,EB,EC,ED,EE,EF,EG,EH;
Canary Islands:           33:  36:  AF:   28.32:    15.85:     0.0:  EA8:
    AM8,AN8,AO8,EA8,EB8,EC8,ED8,EE8,EF8,EG8,EH8,=EA1AK/8;
Fed. Rep. of Germany:     14:  28:  EU:   51.00:   -10.00:    -1.0:  DL:
    DA,DB,DC,DD,DE,DF,DG,DH,DI,DJ,DK,DL,DM,DN,DO,DP,DQ,DR;
Hawaii:                   31:  61:  OC:   21.12:   157.48:    10.0:  KH6:
    AH6,KH6,NH6,WH6,=K1ABC;
United States of America: 05:  08:  NA:   37.60:    91.87:     5.0:  K:
    AA,K,N,W,
    W6(3)[6]<36.00/120.00>{NA}~-8.0~;
European Russia:          16:  29:  EU:   53.65:   -41.37:    -4.0:  UA:
    R,U;
Asiatic Russia:           17:  30:  AS:   55.88:   -84.08:    -7.0:  UA9:
    R9,U9,UA9;
Sicily:                   15:  28:  EU:   37.50:   -14.00:    -1.0:  *IT9:
    IT9;
Juan de Nova, Europa:     39:  53:  AF:  -17.05:   -42.72:    -3.0:  FT/j:
    FT4J,FT5J,=FR5IZ/E;
)";

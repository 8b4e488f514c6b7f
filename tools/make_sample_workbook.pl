#!/usr/bin/perl
# make_sample_workbook.pl OUTPUT.xls [DAYS]
#
# Writes the sample menu workbook that the program carries: an Excel 97
# (BIFF8) file with the sheets Sayfa1, Sayfa2 and Sayfa3. Sayfa1 holds a
# header row and a made-up April, four rows a day, one line of each meal a
# row; the other two sheets are empty. The dishes follow fixed rotations, so
# every run writes the same cells. DAYS (30 when not given) makes a longer
# sheet for measuring: day blocks past the month's end, all in April.

use strict;
use warnings;
use utf8;
use Spreadsheet::WriteExcel;

die "usage: perl make_sample_workbook.pl OUTPUT.xls [DAYS]\n" unless @ARGV == 1 || @ARGV == 2;

my $month = 4;
my $days  = @ARGV == 2 ? $ARGV[1] : 30;

# Rotations of the meals. Strings carry Perl's UTF-8 flag (use utf8), which
# makes the writer store them as UTF-16 and keeps the Turkish letters.
my @soups = (
    'MERCİMEK ÇORBASI', 'EZOGELİN ÇORBASI', 'YAYLA ÇORBASI',   'TARHANA ÇORBASI',
    'DOMATES ÇORBASI',  'SEBZE ÇORBASI',    'ŞEHRİYE ÇORBASI', 'DÜĞÜN ÇORBASI',
    'MANTAR ÇORBASI',   'TAVUK SUYU ÇORBASI',
);
my @mains = (
    'ETLİ KURU FASULYE', 'TAVUK SOTE',   'İZMİR KÖFTE',     'ETLİ NOHUT',
    'KIYMALI PATATES',   'FIRIN TAVUK',  'ORMAN KEBABI',    'KARNIYARIK',
    'ETLİ TÜRLÜ',        'TAS KEBABI',   'HASANPAŞA KÖFTE', 'ETLİ BEZELYE',
    'TAVUK ŞİŞ',
);
my @sides = (
    'PİRİNÇ PİLAVI', 'BULGUR PİLAVI', 'SOSLU MAKARNA', 'ŞEHRİYELİ PİLAV',
    'PATATES PÜRESİ', 'ERİŞTE',       'PEYNİRLİ BÖREK',
);
my @finishes = (
    'CACIK',         'SÜTLAÇ',            'MEVSİM SALATASI', 'LAHANA, HAVUÇ SALATASI',
    'İRMİK HELVASI', 'ÇOBAN SALATASI',    'KARIŞIK TURŞU',   'REVANİ',
    'AYRAN',         'KEMALPAŞA TATLISI', 'YOĞURT,MEYVE',
);
my @eggs     = ('HAŞLANMIŞ YUMURTA', 'MENEMEN', 'SUCUKLU YUMURTA', 'PATATESLİ YUMURTA', 'OMLET');
my @cheeses  = ('BEYAZ PEYNİR', 'KAŞAR PEYNİRİ', 'ÜÇGEN PEYNİR', 'LOR PEYNİRİ');
my @spreads  = ('SİYAH ZEYTİN', 'BAL, TEREYAĞI', 'YEŞİL ZEYTİN', 'VİŞNE REÇELİ', 'TAHİN,PEKMEZ');
my @drinks   = ('ÇAY', 'SÜT', 'DOMATES, SALATALIK', 'IHLAMUR');
my @snacks   = (
    'PATLAMIŞ MISIR,PORTAKAL', 'KEK, AYRAN',        'SİMİT, ÇAY', 'POĞAÇA, MEYVE SUYU',
    'ELMA',                    'MUZ, SÜT',          'KURABİYE,ÇAY',
);

# The dish of a rotation for a day: a step through the list that differs per
# rotation, so that no two meals repeat together.
sub pick {
    my ($list, $day, $step, $start) = @_;
    return $list->[($day * $step + $start) % @$list];
}

# Breakfast has four items on most days and three on every third day; the
# first day has four.
sub breakfast {
    my ($day) = @_;
    my @items = (pick(\@eggs, $day, 2, 0), pick(\@cheeses, $day, 1, 3), pick(\@spreads, $day, 3, 1));
    push @items, pick(\@drinks, $day, 1, 0) if $day % 3 != 0;
    return @items;
}

sub lunch {
    my ($day) = @_;
    return (pick(\@soups, $day, 3, 0), pick(\@mains, $day, 5, 0), pick(\@sides, $day, 2, 0),
            pick(\@finishes, $day, 4, 0));
}

# Supper starts each rotation half way round, away from the day's lunch.
sub supper {
    my ($day) = @_;
    return (pick(\@soups, $day, 3, 5), pick(\@mains, $day, 5, 6), pick(\@sides, $day, 2, 3),
            pick(\@finishes, $day, 4, 5));
}

my $workbook = Spreadsheet::WriteExcel->new($ARGV[0]) or die "cannot write $ARGV[0]: $!\n";
my $sheet = $workbook->add_worksheet('Sayfa1');
$workbook->add_worksheet('Sayfa2');
$workbook->add_worksheet('Sayfa3');

my @header = ('ay', 'gun', 'sabah', 'ogle', 'aksam', 'ara_ogun');
$sheet->write_string(0, $_, $header[$_]) for 0 .. $#header;

# A meal with fewer than four lines leaves the rest of its cells blank (no
# cell at all); the snack after the day's first row is an empty text, as the
# dietitian's template has it.
my $row = 1;
for my $day (1 .. $days) {
    my @morning = breakfast($day);
    my @noon    = lunch($day);
    my @evening = supper($day);
    my @snack   = (pick(\@snacks, $day, 1, 0));
    for my $line (0 .. 3) {
        $sheet->write_number($row, 0, $month);
        $sheet->write_number($row, 1, $day);
        $sheet->write_string($row, 2, $morning[$line]) if defined $morning[$line];
        $sheet->write_string($row, 3, $noon[$line]);
        $sheet->write_string($row, 4, $evening[$line]);
        $sheet->write_string($row, 5, $snack[$line] // '');
        ++$row;
    }
}

$workbook->close() or die "cannot write $ARGV[0]: $!\n";

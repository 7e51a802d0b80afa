// The letters whose case the library knows, written out as text: a reference for the table. An editor must
// not normalise this file: some Greek letters here exist under two numbers.
#pragma once

#include <cstdint>
#include <vector>

namespace ulk_test {

// Neighbours in a row belong together.
struct LetterRow {
  const char16_t* from;
  const char16_t* to;
};

// Capital and small letters that map to each other.
constexpr LetterRow kCapitalAndSmall[] = {
    {u"ABCDEFGHIJKLMNOPQRSTUVWXYZ", u"abcdefghijklmnopqrstuvwxyz"},
    {u"ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖØÙÚÛÜÝÞ", u"àáâãäåæçèéêëìíîïðñòóôõöøùúûüýþ"},
    {u"ĀĂĄĆĈĊČĎĐĒĔĖĘĚĜĞĠĢĤĦĨĪĬĮĲĴĶĹĻĽĿŁŃŅŇŊŌŎŐŒ", u"āăąćĉċčďđēĕėęěĝğġģĥħĩīĭįĳĵķĺļľŀłńņňŋōŏőœ"},
    {u"ŔŖŘŚŜŞŠŢŤŦŨŪŬŮŰŲŴŶŸŹŻŽƁƂƄƆƇƉƊƋƎƏƐƑƓƔƖƗƘƜ", u"ŕŗřśŝşšţťŧũūŭůűųŵŷÿźżžɓƃƅɔƈɖɗƌɘəɛƒɠɣɩɨƙɯ"},
    {u"ƝƠƢƤƧƩƬƮƯƱƲƳƵƷƸƼǄǇǊǍǏǑǓǕǗǙǛǞǠǢǤǦǨǪǬǮǱǴǺǼ", u"ɲơƣƥƨʃƭʈưʊʋƴƶʒƹƽǆǉǌǎǐǒǔǖǘǚǜǟǡǣǥǧǩǫǭǯǳǵǻǽ"},
    {u"ǾȀȂȄȆȈȊȌȎȐȒȔȖ", u"ǿȁȃȅȇȉȋȍȏȑȓȕȗ"},
    {u"ΆΈΉΊΌΎΏΑΒΓΔΕΖΗΘΙΚΛΜΝΞΟΠΡΣΤΥΦΧΨΩΪΫ", u"άέήίόύώαβγδεζηθικλμνξοπρστυφχψωϊϋ"},
    {u"ϢϤϦϨϪϬϮ", u"ϣϥϧϩϫϭϯ"},
    {u"ЁЂЃЄЅІЇЈЉЊЋЌЎЏАБВГДЕЖЗИЙКЛМНОПРСТУФХЦЧШЩ", u"ёђѓєѕіїјљњћќўџабвгдежзийклмнопрстуфхцчшщ"},
    {u"ЪЫЬЭЮЯ", u"ъыьэюя"},
    {u"ѠѢѤѦѨѪѬѮѰѲѴѶѸѺѼѾҀҐҒҔҖҘҚҜҞҠҢҤҦҨҪҬҮҰҲҴҶҸҺҼ", u"ѡѣѥѧѩѫѭѯѱѳѵѷѹѻѽѿҁґғҕҗҙқҝҟҡңҥҧҩҫҭүұҳҵҷҹһҽ"},
    {u"ҾӁӃӇӋӐӒӔӖӘӚӜӞӠӢӤӦӨӪӮӰӲӴӸ", u"ҿӂӄӈӌӑӓӕӗәӛӝӟӡӣӥӧөӫӯӱӳӵӹ"},
    {u"ԱԲԳԴԵԶԷԸԹԺԻԼԽԾԿՀՁՂՃՄՅՆՇՈՉՊՋՌՍՎՏՐՑՒՓՔՕՖ", u"աբգդեզէըթժիլխծկհձղճմյնշոչպջռսվտրցւփքօֆ"},
    {u"ḀḂḄḆḈḊḌḎḐḒḔḖḘḚḜḞḠḢḤḦḨḪḬḮḰḲḴḶḸḺḼḾṀṂṄṆṈṊṌṎ", u"ḁḃḅḇḉḋḍḏḑḓḕḗḙḛḝḟḡḣḥḧḩḫḭḯḱḳḵḷḹḻḽḿṁṃṅṇṉṋṍṏ"},
    {u"ṐṒṔṖṘṚṜṞṠṢṤṦṨṪṬṮṰṲṴṶṸṺṼṾẀẂẄẆẈẊẌẎẐẒẔẠẢẤẦẨ", u"ṑṓṕṗṙṛṝṟṡṣṥṧṩṫṭṯṱṳṵṷṹṻṽṿẁẃẅẇẉẋẍẏẑẓẕạảấầẩ"},
    {u"ẪẬẮẰẲẴẶẸẺẼẾỀỂỄỆỈỊỌỎỐỒỔỖỘỚỜỞỠỢỤỦỨỪỬỮỰỲỴỶỸ", u"ẫậắằẳẵặẹẻẽếềểễệỉịọỏốồổỗộớờởỡợụủứừửữựỳỵỷỹ"},
    {u"ἈἉἊἋἌἍἎἏἘἙἚἛἜἝἨἩἪἫἬἭἮἯἸἹἺἻἼἽἾἿὈὉὊὋὌὍὙὛὝὟ", u"ἀἁἂἃἄἅἆἇἐἑἒἓἔἕἠἡἢἣἤἥἦἧἰἱἲἳἴἵἶἷὀὁὂὃὄὅὑὓὕὗ"},
    {u"ὨὩὪὫὬὭὮὯ", u"ὠὡὢὣὤὥὦὧ"},
    {u"ᾈᾉᾊᾋᾌᾍᾎᾏᾘᾙᾚᾛᾜᾝᾞᾟᾨᾩᾪᾫᾬᾭᾮᾯᾸᾹᾺΆᾼῈΈῊΉῌῘῙῚΊῨῩ", u"ᾀᾁᾂᾃᾄᾅᾆᾇᾐᾑᾒᾓᾔᾕᾖᾗᾠᾡᾢᾣᾤᾥᾦᾧᾰᾱὰάᾳὲέὴήῃῐῑὶίῠῡ"},
    {u"ῪΎῬῸΌῺΏῼ", u"ὺύῥὸόὼώῳ"},
    {u"ⅠⅡⅢⅣⅤⅥⅦⅧⅨⅩⅪⅫⅬⅭⅮⅯ", u"ⅰⅱⅲⅳⅴⅵⅶⅷⅸⅹⅺⅻⅼⅽⅾⅿ"},
    {u"ⒶⒷⒸⒹⒺⒻⒼⒽⒾⒿⓀⓁⓂⓃⓄⓅⓆⓇⓈⓉⓊⓋⓌⓍⓎⓏ", u"ⓐⓑⓒⓓⓔⓕⓖⓗⓘⓙⓚⓛⓜⓝⓞⓟⓠⓡⓢⓣⓤⓥⓦⓧⓨⓩ"},
    {u"ＡＢＣＤＥＦＧＨＩＪＫＬＭＮＯＰＱＲＳＴＵＶＷＸＹＺ",
     u"ａｂｃｄｅｆｇｈｉｊｋｌｍｎｏｐｑｒｓｔｕｖｗｘｙｚ"},
};

// Letters with a lowercase that does not map back to them.
constexpr LetterRow kToLowerOnly[] = {
    {u"İ", u"i"},
    {u"ǅǈǋǲ", u"ǆǉǌǳ"},
    {u"ႠႡႢႣႤႥႦႧႨႩႪႫႬႭႮႯႰႱႲႳႴႵႶႷႸႹႺႻႼႽႾႿჀჁჂჃჄჅ", u"აბგდევზთიკლმნოპჟრსტუფქღყშჩცძწჭხჯჰჱჲჳჴჵ"},
};

// Letters with an uppercase that does not map back to them.
constexpr LetterRow kToUpperOnly[] = {
    {u"ı", u"I"},
    {u"ſ", u"S"},
    {u"ǅǈǋǲ", u"ǄǇǊǱ"},
    {u"ϐϑϕϖϰϱ", u"ΒΘΦΠΚΡ"},
};

// What the Latin functions make of a unit.
template <class Unit>
Unit latinLower(Unit unit) {
  return static_cast<Unit>(unit >= 'A' && unit <= 'Z' ? unit + 32 : unit);
}
template <class Unit>
Unit latinUpper(Unit unit) {
  return static_cast<Unit>(unit >= 'a' && unit <= 'z' ? unit - 32 : unit);
}

// What every 16-bit unit becomes in the others.
struct ReferenceCase {
  std::vector<uint16_t> lower;
  std::vector<uint16_t> upper;

  ReferenceCase() {
    for (uint32_t unit = 0; unit < 0x10000; ++unit) {
      lower.push_back(static_cast<uint16_t>(unit));
      upper.push_back(static_cast<uint16_t>(unit));
    }
    for (const LetterRow& row : kCapitalAndSmall) {
      fill(lower, row.from, row.to);
      fill(upper, row.to, row.from);
    }
    for (const LetterRow& row : kToLowerOnly) fill(lower, row.from, row.to);
    for (const LetterRow& row : kToUpperOnly) fill(upper, row.from, row.to);
  }

 private:
  static void fill(std::vector<uint16_t>& mapping, const char16_t* from, const char16_t* to) {
    for (; *from; ++from, ++to) mapping[*from] = static_cast<uint16_t>(*to);
  }
};

inline const ReferenceCase& referenceCase() {
  static const ReferenceCase kReference;
  return kReference;
}
inline uint16_t fullLower(uint16_t unit) { return referenceCase().lower[unit]; }
inline uint16_t fullUpper(uint16_t unit) { return referenceCase().upper[unit]; }

}  // namespace ulk_test

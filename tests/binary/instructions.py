"""The library contains no instruction newer than SSE3."""

import re
import sys

from binary import lines_of, parse_arguments

NEWER = {
    "SSSE3": r"pshufb|palignr|ph(add|sub)(w|d|sw)|pmaddubsw|pmulhrsw|psign[bwd]|pabs[bwd]",
    "SSE4.1": r"pmin(sb|sd|uw|ud)|pmax(sb|sd|uw|ud)|pmov[sz]x\w+|pmul(ld|dq)|ptest|p?blend\w+|pcmpeqq|packusdw"
    r"|pextr[bdq]|pinsr[bdq]|round[ps][sd]|dpp[sd]|mpsadbw|insertps|extractps|movntdqa|phminposuw",
    "SSE4.2": r"pcmp[ie]str[im]|pcmpgtq|crc32[bwlq]?",
    "SSE4a": r"extrq|insertq|movnts[sd]",
    "AVX and later": r"v[a-z]+\w*(?<!\bverr)(?<!\bverw)|k(mov|and|or|xor|test|shift)\w*",
    "bit counts": r"popcnt[wlq]?|lzcnt[wlq]?",
    "BMI": r"andn[lq]?|bextr\w*|bls(i|r|msk)\w*|bzhi\w*|mulx\w*|pdep\w*|pext[lq]?|rorx\w*|sarx\w*|shlx\w*|shrx\w*",
    "others": r"movbe\w*|aes\w+|pclmul\w+|sha(1|256)\w+|adcx\w*|adox\w*|rdrand\w*|rdseed\w*|rdtscp|xsave\w*|xrstor\w*",
}
# "tzcnt" is absent on purpose: it is how the disassembler shows "rep bsf", which older processors run as plain bsf and
# compilers emit for them too.
PATTERNS = [(name, re.compile(rf"^({pattern})$")) for name, pattern in NEWER.items()]
INSTRUCTION = re.compile(r"^\s*[0-9a-f]+:\s+((?:(?:rep|repz|repnz|lock|data16|cs|ds|bnd|notrack)\s+)*)([a-z]\w*)")

arguments = parse_arguments(__doc__, ("libraries", "+"))
for library in arguments.libraries:
    count, symbol, found = 0, "", []
    for line in lines_of(arguments.objdump, "-d", "--no-show-raw-insn", library):
        if line.endswith(">:"):
            symbol = line.split("<", 1)[1][:-2]
        elif instruction := INSTRUCTION.match(line):
            count += 1
            mnemonic = instruction.group(2)
            found += [f"{symbol}: {mnemonic} ({name})" for name, pattern in PATTERNS if pattern.match(mnemonic)]
    if found:
        sys.exit(f"{library}: {len(found)} newer than SSE3, among them:\n" + "\n".join(sorted(set(found))[:20]))
    if count == 0:
        sys.exit(f"{library}: no instructions found in it")
    print(f"{library}: {count} instructions, none newer than SSE3")

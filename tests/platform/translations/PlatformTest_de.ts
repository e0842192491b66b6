<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>PlatformTest</name>
    <message>
        <source>Street</source>
        <translation>Straße</translation>
    </message>
</context>
</TS>

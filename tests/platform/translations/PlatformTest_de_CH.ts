<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_CH" sourcelanguage="en">
<context>
    <name>PlatformTest</name>
    <message>
        <source>Street</source>
        <translation>Straße (Schweiz)</translation>
    </message>
</context>
</TS>
